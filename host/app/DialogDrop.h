#pragma once
#include <QStringList>
#include <QWidget>

class QAbstractButton;

namespace orvex {

/// The Add Files dialog while it is open on top, else null.
QWidget* FindAddFilesDialog();

/// Drops files and folders on a widget, as a file manager would. Returns when the drop was handled.
void DropPaths(QWidget* target, const QStringList& paths);

/// The button of a message or question that says yes: Yes, OK or Close; null when it has none.
QAbstractButton* AgreeingButton(QWidget* window);

}  // namespace orvex
