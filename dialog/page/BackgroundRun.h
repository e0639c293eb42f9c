#pragma once
#include <functional>
#include <stop_token>

namespace Kst {
class ProgressIf;
}

namespace orvex {

/// How a background run ended. Abandoned: the work did not return within a second after it was asked to stop;
/// it goes on by itself until it returns, and what it finds then is dropped.
enum class RunEnd { Finished, Stopped, Abandoned };

/// What `poll` decides each time.
enum class PollResult { GoOn, Abandon };

/// Runs `work` on a thread of its own while this thread pumps events through `progress`, so that a file
/// system that does not answer never freezes the window. `poll` runs on this thread every few milliseconds
/// and once more after the work has ended; `work` must look at its token between files. An exception of the
/// work is thrown here, one of `poll` leaves the work abandoned. `work` may outlive this call and every
/// window: it must own whatever it touches.
RunEnd RunInBackground(std::function<void(std::stop_token)> work, Kst::ProgressIf& progress,
                       const std::function<PollResult()>& poll);

}  // namespace orvex
