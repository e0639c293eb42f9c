#pragma once

class QWidget;

namespace orvex {

class OptionStore;

/// Stores a window's size and position under a name.
void SaveWindowPlacement(const QWidget& window, const OptionStore& options, const wchar_t* name);

/// Restores a window's size and position as far as they fit the screen. False if nothing usable is stored;
/// the window is then left unchanged.
bool RestoreWindowPlacement(QWidget& window, const OptionStore& options, const wchar_t* name);

}  // namespace orvex
