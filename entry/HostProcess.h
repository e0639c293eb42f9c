#pragma once
// The process and the thread of a host without Qt around a call: its state, its quit message, its screens.
#include <functional>
#include <memory>
#include <string>

namespace orvex {

/// Saves what a call changes in the process or the thread, and restores it when destroyed: the current folder
/// and the floating-point environment; on Linux the C locale; on Windows the error mode, the active window
/// and the focus.
class ProcessState {
  public:
    ProcessState();
    ~ProcessState();
    ProcessState(const ProcessState&) = delete;
    ProcessState& operator=(const ProcessState&) = delete;

  private:
    struct Kept;
    std::unique_ptr<Kept> kept_;
};

/// Notices that the host ends its message loop (WM_QUIT on Windows) while a dialog's own loop runs, which
/// would swallow the message, and posts it again when destroyed. Without effect on Linux.
class QuitWatch {
  public:
    /// `onQuit` is called on this thread, inside a message loop, each time the message comes.
    explicit QuitWatch(std::function<void()> onQuit);
    ~QuitWatch();
    QuitWatch(const QuitWatch&) = delete;
    QuitWatch& operator=(const QuitWatch&) = delete;

    /// True if the message has come.
    bool HasQuit() const;

  private:
    struct Hook;
    std::unique_ptr<Hook> hook_;
};

/// Value for Qt's "-platform" option that leaves the process as it is; empty: Qt decides. On Windows Qt would
/// otherwise make the process DPI-aware, which shrinks the host's windows. Throws LDataError if there is no
/// display, for which Qt would end the process.
std::string QtPlatformOption();

/// Keeps this module loaded until the process ends, whoever unloads it: Qt cannot be taken out once started,
/// and a worker that waits for a network drive may still be inside.
void KeepModuleLoaded();

}  // namespace orvex
