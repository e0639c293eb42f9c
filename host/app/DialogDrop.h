#pragma once
#include <QStringList>
#include <QWidget>

class QAbstractButton;

namespace orvex {

/// The Add Files dialog while it is open on top, else null.
QWidget* FindAddFilesDialog();

/// Names of the dialog's pages.
inline constexpr const char* kLasPage = "page363";
inline constexpr const char* kRasterPage = "page385";
inline constexpr const char* kDemPage = "page403";

/// Brings a page of the dialog to the front. False when the dialog has no such page.
bool ShowPage(QWidget* dialog, const QString& page);

/// Drops files and folders on a widget, as a file manager would. Returns when the drop was handled.
void DropPaths(QWidget* target, const QStringList& paths);

/// The button of a message or question that says yes: Yes, OK or Close; null when it has none.
QAbstractButton* AgreeingButton(QWidget* window);

}  // namespace orvex
