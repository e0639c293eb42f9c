#pragma once
// The process and the thread of a host without Qt around a call: its state, its quit message, its screens.
#include <functional>
#include <memory>
#include <string>
#include <vector>

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

/// Platforms for Qt's "-platform" option in the order of preference, each a name, or a name, a colon and
/// parameters; empty if there is no display. On Windows the parameters leave the process as it is: Qt would
/// otherwise make it DPI-aware, which shrinks the host's windows.
std::vector<std::string> QtPlatforms();

/// Reason why windows cannot be shown on the display of a platform (a name of Qt's), for which Qt would end
/// the process; empty if they can. May wait for a display that another machine has.
std::wstring DisplayFault(const std::string& platform);

/// Keeps this module loaded until the process ends, whoever unloads it: Qt cannot be taken out once started,
/// and a worker that waits for a network drive may still be inside.
void KeepModuleLoaded();

}  // namespace orvex
