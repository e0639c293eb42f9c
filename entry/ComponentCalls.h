#pragma once
// What hosts call, through whichever interface: how a call ends, and what it does.
#include <cstdint>
#include <functional>
#include <memory>
#include <string>

#include "dialog/AddingLidar.h"
#include "entry/OwnerWindow.h"
#include "support/HostObjects.h"
#include "support/LDataError.h"
#include "support/ModuleUse.h"

class AddFilesParams;

namespace orvex {

/// How a call has ended; the numbers are those of the C interface.
enum class CallEnd : std::int32_t {
    Ok = 0,
    Cancelled = 1,
    NotShown = 2,
    Invalid = 3,
    Failed = 4,
    NoMemory = 5
};

struct CallOutcome {
    CallOutcome(CallEnd callEnd, std::wstring text = {}) noexcept : end(callEnd), reason(std::move(text)) {}

    CallEnd end;
    std::wstring reason;  ///< of a failure; empty after Ok and Cancelled
};

/// A host's argument or request is wrong.
class InvalidCall : public LDataError {
  public:
    using LDataError::LDataError;
};

/// Outcome of a call that has thrown, which is logged. To be called in a catch block.
CallOutcome OutcomeOfException(const wchar_t* function) noexcept;

/// Runs the body of an exported function, which returns a CallOutcome or a CallEnd. No exception leaves the
/// component: the host may be built with another runtime.
template <typename Body>
CallOutcome RunCall(const wchar_t* function, Body body) noexcept {
    const ModuleUse use;
    try {
        return body();
    } catch (...) {
        return OutcomeOfException(function);
    }
}

/// The host of a call.
struct CallHost {
    NativeWindow owner = 0;  ///< of the windows; 0: the thread's active one
    std::function<std::unique_ptr<HostObjects>()> makeObjects = MakeHostObjects;
};

// Each shows its windows on this thread, throws WindowsNotShown if that is impossible, and LDataError or
// another exception for other failures.

/// Shows the dialog. Ok if anything is to be added, else Cancelled.
CallEnd AddFiles(AddFilesParams& params, const CallHost& host);

/// Asks how LiDAR data is added unless the answer is stored. `choice` is unchanged unless Ok or Cancelled.
CallEnd AskAddingLidar(bool readWriteAllowed, const CallHost& host, AddLidarChoice& choice);

void TellLidarFindings(const LidarFindings& findings, const std::wstring& caption, const CallHost& host);

}  // namespace orvex
