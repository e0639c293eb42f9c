#include "entry/CallScope.h"

#include <QApplication>

namespace orvex {
namespace {

bool HostHasQt() {
    return QCoreApplication::instance() != nullptr;
}

QWidget* QtWindow(NativeWindow owner) {
    return owner == 0 ? QApplication::activeWindow() : QWidget::find(static_cast<WId>(owner));
}

}  // namespace

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
    if (const NativeWindow window = parent_ ? 0 : FindNativeOwner(owner)) {
        owner_.emplace(window, [this] { end_.Begin(); });
    }
}

CallScope::~CallScope() {
    toEnd_ = nullptr;
}

}  // namespace orvex
