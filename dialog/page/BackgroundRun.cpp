#include "dialog/page/BackgroundRun.h"

#include <chrono>
#include <condition_variable>
#include <exception>
#include <memory>
#include <mutex>
#include <optional>
#include <thread>

#include "support/ModuleUse.h"
#include "support/ProgressIf.h"

namespace orvex {
namespace {

using Clock = std::chrono::steady_clock;
constexpr auto kPollEvery = std::chrono::milliseconds(4);
constexpr auto kPatience = std::chrono::seconds(1);

struct Shared {
    std::mutex lock;
    std::condition_variable ended;
    bool done = false;
    std::exception_ptr failure;
    std::stop_source stop;
    ModuleUse use;  // a worker that waits in vain for a drive outlives the call that started it
};

void Work(const std::shared_ptr<Shared>& shared, std::function<void(std::stop_token)> work) {
    std::exception_ptr failure;
    try {
        work(shared->stop.get_token());
    } catch (...) {
        failure = std::current_exception();
    }
    work = nullptr;  // what it owns is gone before the run counts as ended
    const std::lock_guard guard(shared->lock);
    shared->failure = failure;
    shared->done = true;
    shared->ended.notify_all();
}

bool WaitForEnd(Shared& shared) {
    std::unique_lock guard(shared.lock);
    return shared.ended.wait_for(guard, kPollEvery, [&] { return shared.done; });
}

// The thread of a run. Left behind when the run is abandoned, otherwise joined, which costs nothing once the
// work has ended. A thread is never detached while it ends: seen with mingw-w64 10's winpthreads under Wine,
// once in some thousand times a thread that starts later then gets a null argument and the process ends. None
// did that after threads that were joined, or were detached well before their end.
class Worker {
  public:
    Worker(const std::shared_ptr<Shared>& shared, std::function<void(std::stop_token)> work)
        : shared_(*shared), thread_(Work, shared, std::move(work)) {}
    ~Worker() {
        shared_.stop.request_stop();
        if (!LeaveBehind()) {
            thread_.join();
        }
    }
    Worker(const Worker&) = delete;
    Worker& operator=(const Worker&) = delete;

  private:
    // False when the work has ended. The lock keeps the thread from ending meanwhile.
    bool LeaveBehind() {
        const std::lock_guard guard(shared_.lock);
        if (!shared_.done) {
            thread_.detach();
        }
        return !shared_.done;
    }

    Shared& shared_;
    std::thread thread_;
};

}  // namespace

RunEnd RunInBackground(std::function<void(std::stop_token)> work, Kst::ProgressIf& progress,
                       const std::function<PollResult()>& poll) {
    const auto shared = std::make_shared<Shared>();
    const Worker worker(shared, std::move(work));
    std::optional<Clock::time_point> stoppedAt;
    while (!WaitForEnd(*shared)) {
        if (poll() == PollResult::Abandon) {
            return RunEnd::Abandoned;
        }
        if (!stoppedAt && progress.IsCancelled()) {
            shared->stop.request_stop();
            stoppedAt = Clock::now();
        }
        if (stoppedAt && Clock::now() - *stoppedAt > kPatience) {
            return RunEnd::Abandoned;
        }
        if (stoppedAt) {
            progress.IsCancelled();  // the window stays alive while the last file is awaited
        }
    }
    const std::exception_ptr failure = shared->failure;
    if (poll() == PollResult::Abandon) {
        return RunEnd::Abandoned;
    }
    if (failure) {
        std::rethrow_exception(failure);
    }
    return stoppedAt ? RunEnd::Stopped : RunEnd::Finished;
}

}  // namespace orvex
