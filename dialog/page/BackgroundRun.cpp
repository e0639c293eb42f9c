#include "dialog/page/BackgroundRun.h"

#include <chrono>
#include <exception>
#include <optional>
#include <utility>

#include "dialog/page/BackgroundWorker.h"
#include "support/ProgressIf.h"

namespace orvex {
namespace {

using Clock = std::chrono::steady_clock;
constexpr auto kPollEvery = std::chrono::milliseconds(4);
constexpr auto kPatience = std::chrono::seconds(1);

}  // namespace

RunEnd RunInBackground(std::function<void(std::stop_token)> work, Kst::ProgressIf& progress,
                       const std::function<PollResult()>& poll) {
    BackgroundWorker worker(std::move(work));
    std::optional<Clock::time_point> stoppedAt;
    while (!worker.WaitForEnd(kPollEvery)) {
        if (poll() == PollResult::Abandon) {
            return RunEnd::Abandoned;
        }
        if (!stoppedAt && progress.IsCancelled()) {
            worker.RequestStop();
            stoppedAt = Clock::now();
        }
        if (stoppedAt && Clock::now() - *stoppedAt > kPatience) {
            return RunEnd::Abandoned;
        }
        if (stoppedAt) {
            progress.IsCancelled();  // the window stays alive while the last file is awaited
        }
    }
    const std::exception_ptr failure = worker.Failure();
    if (poll() == PollResult::Abandon) {
        return RunEnd::Abandoned;
    }
    if (failure) {
        std::rethrow_exception(failure);
    }
    return stoppedAt ? RunEnd::Stopped : RunEnd::Finished;
}

}  // namespace orvex
