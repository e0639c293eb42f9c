#pragma once
#include <QPointer>
#include <QWidget>
#include <memory>
#include <optional>

#include "entry/ModalEnd.h"
#include "entry/OwnerWindow.h"
#include "entry/ProcessState.h"
#include "entry/QtSession.h"
#include "entry/QuitWatch.h"

namespace orvex {

/// What stands around every exported function that shows windows: Qt, the window that they belong to, and the
/// host's process as it was before, however the call ends.
class CallScope {
  public:
    /// `owner` is the window the host names; 0: the active one of this thread. Throws LDataError when windows
    /// cannot be shown.
    explicit CallScope(NativeWindow owner = 0);
    ~CallScope();
    CallScope(const CallScope&) = delete;
    CallScope& operator=(const CallScope&) = delete;

    /// The host's window that dialogs have as their parent; null when it is not Qt's, or there is none.
    QWidget* Parent() const { return parent_; }

  private:
    // In this order: each may need what stands above it until it goes. The first two only in a host without
    // Qt.
    ModalEnd* toEnd_ = nullptr;
    std::unique_ptr<ProcessState> state_;
    std::unique_ptr<QuitWatch> quit_;
    QtSession qt_;
    ModalEnd end_;
    QPointer<QWidget> parent_;
    std::optional<OwnerWindow> owner_;
};

}  // namespace orvex
