#include "dialog/FileAdder.h"

#include <algorithm>
#include <chrono>
#include <condition_variable>
#include <deque>
#include <mutex>

#include "dialog/BackgroundRun.h"
#include "support/Format.h"
#include "support/LDataError.h"
#include "support/ProgressIf.h"
#include "support/UserPrompts.h"

namespace orvex {

std::wstring InspectionFailureText() {
    return CurrentExceptionText();
}

namespace adding {
namespace {

using Clock = std::chrono::steady_clock;
constexpr std::size_t kQueueLimit = 256;  // files read ahead of the grid
constexpr std::size_t kBatchLimit = 100;
constexpr auto kBatchEvery = std::chrono::milliseconds(30);
constexpr std::size_t kProgressTextLimit = 256;

// Results on their way from the worker to the grid, in the order of the paths; null: listed already. The
// worker waits while it is full.
class ResultQueue {
  public:
    // False when the run was stopped meanwhile; the result is dropped then.
    bool Push(InspectedPtr result, const std::stop_token& stop) {
        std::unique_lock guard(lock_);
        if (!roomLeft_.wait(guard, stop, [this] { return results_.size() < kQueueLimit || closed_; }) &&
            closed_) {
            return false;
        }
        if (closed_) {
            return false;
        }
        results_.push_back(std::move(result));
        return true;
    }

    std::deque<InspectedPtr> TakeAll() {
        const std::lock_guard guard(lock_);
        roomLeft_.notify_all();
        return std::exchange(results_, {});
    }

    // Nothing is kept from now on.
    void Close() {
        std::deque<InspectedPtr> dropped;
        const std::lock_guard guard(lock_);
        closed_ = true;
        dropped.swap(results_);
        roomLeft_.notify_all();
    }

  private:
    std::mutex lock_;
    std::condition_variable_any roomLeft_;
    std::deque<InspectedPtr> results_;
    bool closed_ = false;
};

// What the worker owns; it may outlive the run.
struct Work {
    std::vector<std::wstring> paths;
    std::unordered_set<std::wstring> keys;
    std::function<std::wstring(const std::wstring&)> buddy;
    std::function<InspectedPtr(const std::wstring&)> inspect;
    ResultQueue queue;

    bool IsListed(const std::wstring& path) {
        if (keys.contains(PathKey(path))) {
            return true;
        }
        const std::wstring other = buddy ? buddy(path) : std::wstring();
        return !other.empty() && keys.contains(PathKey(other));
    }

    void Run(const std::stop_token& stop) {
        for (const std::wstring& path : paths) {
            if (stop.stop_requested()) {
                return;
            }
            InspectedPtr result;
            if (!IsListed(path)) {
                keys.insert(PathKey(path));
                result = inspect(path);
            }
            if (!queue.Push(std::move(result), stop)) {
                return;
            }
        }
    }
};

// The side of the run that lives on the user-interface thread.
class Delivery {
  public:
    Delivery(const AddingDescription& description, const Steps& steps, std::shared_ptr<Work> work,
             std::size_t rowsBefore, UserPrompts& prompts, Kst::ProgressIf& progress)
        : description_(description),
          steps_(steps),
          work_(std::move(work)),
          rowsBefore_(rowsBefore),
          prompts_(prompts),
          progress_(progress) {
        summary_.offered = work_->paths.size();
        progress_.SetRange(summary_.offered);
        ShowProgress();
    }
    ~Delivery() { work_->queue.Close(); }
    Delivery(const Delivery&) = delete;
    Delivery& operator=(const Delivery&) = delete;

    PollResult Poll() {
        std::deque<InspectedPtr> results = work_->queue.TakeAll();
        for (InspectedPtr& result : results) {
            ++looked_;
            ShowProgress();
            if (!result) {
                ++summary_.skipped;
                continue;
            }
            batch_.push_back(std::move(result));
            const bool ask = MustAsk();
            if (ask || batch_.size() >= kBatchLimit) {
                Flush();
            }
            if (ask && !MayGoOn()) {
                summary_.stopped = true;
                return PollResult::Abandon;
            }
        }
        if (Clock::now() - lastFlush_ >= kBatchEvery) {
            Flush();
        }
        return PollResult::GoOn;
    }

    AddingSummary Finish(RunEnd end) {
        Flush();
        if (end != RunEnd::Finished) {
            const bool refused = summary_.stopped;
            summary_.stopped = refused || looked_ < summary_.offered;
            if (end == RunEnd::Abandoned && !refused && looked_ < summary_.offered) {
                summary_.abandonedPath = work_->paths[looked_];
            }
        }
        return std::move(summary_);
    }

  private:
    bool MustAsk() const {
        return description_.confirmText.value != 0 &&
               rowsBefore_ + summary_.added + batch_.size() == description_.confirmAtRows;
    }

    bool MayGoOn() {
        const std::wstring text =
            FormatText(Text(description_.confirmText), {static_cast<std::int64_t>(summary_.offered)});
        return prompts_.Show({text, Text(description_.confirmCaption), PromptIcon::Question,
                              PromptButtons::YesNo}) == PromptAnswer::Yes;
    }

    void Flush() {
        lastFlush_ = Clock::now();
        if (!batch_.empty()) {
            summary_.added += batch_.size();
            steps_.deliver(std::exchange(batch_, {}));
        }
    }

    void ShowProgress() {
        const std::size_t ordinal = std::min(looked_ + 1, summary_.offered);
        progress_.SetText(
            FormatText(Text(description_.progressText), {ordinal, summary_.offered}, kProgressTextLimit));
        progress_.SetPosition(looked_);
    }

    const AddingDescription& description_;
    const Steps& steps_;
    std::shared_ptr<Work> work_;
    std::size_t rowsBefore_;
    UserPrompts& prompts_;
    Kst::ProgressIf& progress_;
    AddingSummary summary_;
    std::size_t looked_ = 0;
    std::vector<InspectedPtr> batch_;
    Clock::time_point lastFlush_ = Clock::now();
};

}  // namespace

AddingSummary Run(const AddingDescription& description, AddingRequest request, const Steps& steps,
                  UserPrompts& prompts, Kst::ProgressIf& progress) {
    if (request.paths.empty()) {
        return {};
    }
    const auto work = std::make_shared<Work>();
    work->paths = std::move(request.paths);
    work->keys = std::move(request.listedKeys);
    work->buddy = description.buddy;
    work->inspect = steps.inspect;
    Delivery delivery(description, steps, work, request.rowsBefore, prompts, progress);
    const RunEnd end = RunInBackground([work](const std::stop_token& stop) { work->Run(stop); }, progress,
                                       [&delivery] { return delivery.Poll(); });
    return delivery.Finish(end);
}

}  // namespace adding
}  // namespace orvex
