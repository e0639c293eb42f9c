#include "host/app/DialogDrop.h"

#include <QApplication>
#include <QDialogButtonBox>
#include <QDir>
#include <QDragEnterEvent>
#include <QDropEvent>
#include <QMessageBox>
#include <QMimeData>
#include <QPushButton>
#include <QTabBar>
#include <QUrl>

namespace orvex {

namespace {

/// The first button whose role agrees. Roles, because a program may have given its buttons texts of its own.
template <typename Box>
QAbstractButton* ButtonByRole(const Box& box) {
    for (const auto role : {Box::YesRole, Box::AcceptRole}) {
        for (QAbstractButton* button : box.buttons()) {
            if (box.buttonRole(button) == role) {
                return button;
            }
        }
    }
    return nullptr;
}

}  // namespace

QWidget* FindAddFilesDialog() {
    for (QWidget* widget : QApplication::topLevelWidgets()) {
        if (widget->isVisible() && widget->objectName() == "AddFilesDlg") {
            return widget;
        }
    }
    return nullptr;
}

bool ShowPage(QWidget* dialog, const QString& page) {
    auto* tabs = dialog->findChild<QTabBar*>();
    const auto isShown = [&] {
        const auto* widget = dialog->findChild<QWidget*>(page);
        return widget != nullptr && widget->isVisible();
    };
    const int before = tabs == nullptr ? 0 : tabs->currentIndex();
    // Which tab a page has depends on the pages that there are.
    for (int tab = 0; tabs != nullptr && tab < tabs->count() && !isShown(); ++tab) {
        tabs->setCurrentIndex(tab);
    }
    if (!isShown() && tabs != nullptr) {
        tabs->setCurrentIndex(before);
    }
    return isShown();
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

QAbstractButton* AgreeingButton(QWidget* window) {
    if (const auto* box = qobject_cast<QMessageBox*>(window)) {
        return ButtonByRole(*box);
    }
    if (const auto* box = window->findChild<QDialogButtonBox*>()) {
        return ButtonByRole(*box);
    }
    return window->findChild<QAbstractButton*>("ok");
}

}  // namespace orvex
