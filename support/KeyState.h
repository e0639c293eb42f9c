#pragma once

namespace orvex {

/// Whether a Ctrl key is held down at this moment, also when no window of this program has heard of it yet.
/// Needs a QGuiApplication.
bool IsControlKeyHeld();

}  // namespace orvex
