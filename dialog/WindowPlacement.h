#pragma once

class QWidget;

namespace orvex {

class OptionStore;

/// Stores where a window is, under a name of its own.
void SaveWindowPlacement(const QWidget& window, const OptionStore& options, const wchar_t* name);

/// Brings a window back to where it was stored, and onto a visible monitor whatever was stored. False when
/// nothing usable is stored; the window is then left as it is.
bool RestoreWindowPlacement(QWidget& window, const OptionStore& options, const wchar_t* name);

}  // namespace orvex
