#pragma once
#include <QStringList>
#include <QWidget>

namespace orvex {

/// The Add Files dialog while it is open on top, else null.
QWidget* FindAddFilesDialog();

/// Drops files and folders on a widget, as a file manager would. Returns when the drop was handled.
void DropPaths(QWidget* target, const QStringList& paths);

}  // namespace orvex
