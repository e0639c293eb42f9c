#pragma once

class QWidget;

namespace orvex {

/// The window that a dialog opened now belongs to: the modal one, else the active one; null when there is
/// none.
QWidget* ActiveQtWindow();

}  // namespace orvex
