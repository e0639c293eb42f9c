#pragma once
#include <memory>
#include <string>

namespace orvex {

/// What a call changes in the process or the thread of a host without Qt, and the host would miss: the
/// current folder, how floating point is computed, the C locale (Linux); the error mode, the active window
/// and the focus (Windows). Taken when this is made, put back when it goes.
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

/// What Qt's "-platform" option has to say so that the process stays as it is; empty: nothing, Qt decides. On
/// Windows Qt would otherwise make the process aware of the screens' resolutions, and the host's windows
/// small. Throws LDataError where there is no display, which Qt would end the process for.
std::string QtPlatformOption();

/// Keeps this module in the process to its end, whoever unloads it. Qt, once started, cannot be taken out
/// again, and a worker that waits for a network drive may still be inside it.
void KeepModuleLoaded();

}  // namespace orvex
