#include "host/app/DialogDrop.h"

#include <QApplication>
#include <QDir>
#include <QDragEnterEvent>
#include <QDropEvent>
#include <QMimeData>
#include <QUrl>

namespace orvex {

QWidget* FindAddFilesDialog() {
    for (QWidget* widget : QApplication::topLevelWidgets()) {
        if (widget->isVisible() && widget->objectName() == "AddFilesDlg") {
            return widget;
        }
    }
    return nullptr;
}

void DropPaths(QWidget* target, const QStringList& paths) {
    QList<QUrl> urls;
    for (const QString& path : paths) {
        urls.append(QUrl::fromLocalFile(QDir::current().absoluteFilePath(path)));
    }
    QMimeData data;
    data.setUrls(urls);
    const QPoint middle = target->rect().center();
    QDragEnterEvent enter(middle, Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(target, &enter);
    QDropEvent drop(middle, Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(target, &drop);
}

}  // namespace orvex
