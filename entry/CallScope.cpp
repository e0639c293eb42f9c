#include "entry/CallScope.h"

#include <QApplication>
#include <QDialog>

namespace orvex {
namespace {

// A dialog that reads files stops reading first and takes the next attempt.
constexpr int kAttemptEveryMs = 50;

bool HostHasQt() {
    return QCoreApplication::instance() != nullptr;
}

QWidget* QtWindow(NativeWindow owner) {
    return owner == 0 ? QApplication::activeWindow() : QWidget::find(static_cast<WId>(owner));
}

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

CallScope::CallScope(NativeWindow owner)
    : state_(HostHasQt() ? nullptr : std::make_unique<ProcessState>()),
      quit_(HostHasQt() ? nullptr : std::make_unique<QuitWatch>([this] {
          if (toEnd_ != nullptr) {
              toEnd_->Begin();
          }
      })),
      parent_(qt_.IsOwn() ? nullptr : QtWindow(owner)) {
    KeepModuleLoaded();
    toEnd_ = &end_;
    if (quit_ != nullptr && quit_->HasQuit()) {
        end_.Begin();  // while Qt started
    }
    if (parent_) {
        QObject::connect(parent_, &QObject::destroyed, &end_, &ModalEnd::Begin);
    }
    if (const NativeWindow window = parent_ ? 0 : FindNativeOwner(owner)) {
        owner_.emplace(window, [this] { end_.Begin(); });
    }
}

CallScope::~CallScope() {
    toEnd_ = nullptr;
}

}  // namespace orvex
