#pragma once
#include <windows.h>

namespace orvex {

/// The system's window of the active window of the application; null when there is none, or when Qt's
/// platform has no windows of the system's (offscreen).
HWND ActiveNativeWindow();

}  // namespace orvex
