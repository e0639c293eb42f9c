#pragma once
#include <QObject>
#include <QPointer>
#include <QTimer>
#include <QWidget>
#include <memory>
#include <optional>

#include "entry/HostProcess.h"
#include "entry/OwnerWindow.h"
#include "entry/QtSession.h"

namespace orvex {

/// Cancels the modal windows of a call, the topmost first, and those that open later: for a host that quits,
/// or whose window, the dialogs' owner, is destroyed.
class ModalEnd : public QObject {
  public:
    ModalEnd();

    /// Any thread; a second call is without effect.
    void Begin();

  private:
    void EndTopmost();

    QTimer timer_;
};

/// Set-up of every exported function that shows windows: a running Qt, the owner of the windows, and the
/// host's process as it was before, however the call ends.
class CallScope {
  public:
    /// `owner` is the host's window; 0: this thread's active one. Throws WindowsNotShown.
    explicit CallScope(NativeWindow owner = 0);
    ~CallScope();
    CallScope(const CallScope&) = delete;
    CallScope& operator=(const CallScope&) = delete;

    /// Parent of dialogs: the host's window; null if it is not Qt's, or if there is none.
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
