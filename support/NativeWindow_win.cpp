#include "support/NativeWindow_win.h"

#include <QWidget>

#include "support/ActiveWindowQt.h"

namespace orvex {

HWND ActiveNativeWindow() {
    const QWidget* window = ActiveQtWindow();
    const auto handle = reinterpret_cast<HWND>(window == nullptr ? 0 : window->window()->winId());
    return IsWindow(handle) != FALSE ? handle : nullptr;
}

}  // namespace orvex
