#include "entry/ModalEnd.h"

#include <QApplication>
#include <QDialog>

namespace orvex {
namespace {

// A dialog that reads files stops reading first and takes the next attempt.
constexpr int kAttemptEveryMs = 50;

}  // namespace

ModalEnd::ModalEnd() {
    timer_.setInterval(kAttemptEveryMs);
    // Queued, because a timer rests while its slot runs, and a dialog that is ended may open another one.
    connect(&timer_, &QTimer::timeout, this, &ModalEnd::EndTopmost, Qt::QueuedConnection);
}

void ModalEnd::Begin() {
    QMetaObject::invokeMethod(&timer_, qOverload<>(&QTimer::start), Qt::QueuedConnection);
}

void ModalEnd::EndTopmost() {
    if (QWidget* popup = QApplication::activePopupWidget()) {
        popup->close();
    } else if (auto* dialog = qobject_cast<QDialog*>(QApplication::activeModalWidget())) {
        dialog->reject();
    } else if (QWidget* window = QApplication::activeModalWidget()) {
        window->close();
    }
}

}  // namespace orvex
