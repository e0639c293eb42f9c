#include "dialog/page/FileAdder.h"

#include <algorithm>
#include <chrono>
#include <condition_variable>
#include <deque>
#include <exception>
#include <iterator>
#include <mutex>
#include <optional>
#include <system_error>
#include <thread>
#include <utility>

#include "dialog/page/BackgroundRun.h"
#include "support/Files.h"
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
constexpr std::size_t kMostReaders = 4;
// Time for one file from which another thread is worth it: a LAS file on a local drive takes half of it, a
// raster several times as much.
constexpr auto kWorthAReader = std::chrono::microseconds(100);
constexpr std::size_t kQueueLimit = 256;  // files read ahead of the grid
constexpr std::size_t kBatchLimit = 100;
constexpr auto kBatchEvery = std::chrono::milliseconds(30);
constexpr std::size_t kProgressTextLimit = 256;

// Letters' case does not tell files apart, except two that are there, on a system where it does.
bool IsOneFile(const std::pair<std::wstring, std::wstring>& namesakes) {
    const auto& [a, b] = namesakes;
    return KindOf(a) == FileKind::Missing || KindOf(b) == FileKind::Missing || IsSameFile(a, b);
}

// What the threads of a run own; it may outlive the run. Results are taken in the order of the paths; null:
// listed already.
class Reading {
  public:
    Reading(AddingRequest request, std::function<std::wstring(const std::wstring&)> buddy, const Steps& steps)
        : paths_(std::move(request.paths)),
          listed_(std::move(request.listed)),
          buddy_(std::move(buddy)),
          inspect_(steps.inspect),
          pathsAtOnce_(steps.pathsAtOnce) {}

    const std::vector<std::wstring>& Paths() const { return paths_; }

    // Reads until all are read, or the run is stopped or closed. No thread is left when it returns.
    void Run(const std::stop_token& stop) {
        Begin(stop);
        Read(0, stop);
        End();
        if (failure_) {
            std::rethrow_exception(failure_);
        }
    }

    // Those that are read, up to the first that is not. To be called regularly: how many files are read at
    // once is decided anew each time.
    std::vector<InspectedPtr> TakeReady() {
        std::vector<InspectedPtr> ready;
        const std::lock_guard guard(lock_);
        while (!slots_.empty() && slots_.front().has_value()) {
            ready.push_back(*std::move(slots_.front()));
            slots_.pop_front();
        }
        Adapt();
        changed_.notify_all();
        return ready;
    }

    // Nothing more is read or kept from now on.
    void Close() {
        std::deque<Slot> dropped;
        const std::lock_guard guard(lock_);
        closed_ = true;
        dropped.swap(slots_);
        changed_.notify_all();
    }

  private:
    using Slot = std::optional<InspectedPtr>;
    using Namesakes = std::pair<std::wstring, std::wstring>;  ///< paths with one key
    struct Claimed {
        std::size_t place;
        std::vector<Namesakes> namesakes;
    };

    void Begin(const std::stop_token& stop) {
        const std::lock_guard guard(lock_);
        stop_ = stop;
    }

    void End() {
        std::vector<std::jthread> others;  // waited for without the lock, which they need
        const std::lock_guard guard(lock_);
        stop_.reset();
        others.swap(others_);
    }

    // With the lock held.
    void Adapt() {
        wanted_ = NextReaders(wanted_, std::exchange(read_, 0), std::exchange(spent_, {}));
        const bool isReading = stop_ && !closed_ && next_ < paths_.size();
        if (!isReading || others_.size() + 1 >= wanted_) {
            return;
        }
        try {
            others_.emplace_back([this, number = others_.size() + 1, stop = *stop_] { Read(number, stop); });
        } catch (const std::system_error&) {
            // The system refuses a thread: those that there are do the work.
        }
    }

    void Read(std::size_t reader, const std::stop_token& stop) {
        try {
            while (true) {
                std::vector<Claimed> claimed = Claim(reader, stop);
                if (claimed.empty()) {
                    return;
                }
                const std::vector<std::size_t> places = SkipListed(claimed);
                if (!places.empty()) {
                    const Clock::time_point start = Clock::now();
                    std::vector<InspectedPtr> results = inspect_(PathsAt(places));
                    Put(places, std::move(results), Clock::now() - start);
                }
            }
        } catch (...) {
            Close();
            const std::lock_guard guard(lock_);
            failure_ = std::current_exception();
        }
    }

    // The next files to be read in one call, when there is room for what is found and work for so many
    // readers; none when there is nothing left to do.
    std::vector<Claimed> Claim(std::size_t reader, const std::stop_token& stop) {
        std::unique_lock guard(lock_);
        const auto hasEnded = [&] { return closed_ || next_ == paths_.size(); };
        const auto hasRoom = [&] { return reader < wanted_ && slots_.size() < kQueueLimit; };
        std::vector<Claimed> places;
        while (places.empty()) {
            changed_.wait(guard, stop, [&] { return hasEnded() || hasRoom(); });
            if (hasEnded() || stop.stop_requested()) {
                return {};
            }
            while (places.size() < pathsAtOnce_ && !hasEnded() && hasRoom()) {
                ClaimNext(places);
            }
            if (hasEnded()) {
                changed_.notify_all();
            }
        }
        return places;
    }

    // With the lock held.
    void ClaimNext(std::vector<Claimed>& places) {
        const std::wstring& path = paths_[next_];
        std::vector<Namesakes> namesakes = NamesakesOf(path);
        const std::wstring buddy = buddy_ ? buddy_(path) : std::wstring();
        if (!buddy.empty()) {
            std::ranges::move(NamesakesOf(buddy), std::back_inserter(namesakes));
        }
        const std::size_t place = next_++;
        if (std::ranges::any_of(namesakes, [](const Namesakes& both) { return both.first == both.second; })) {
            slots_.emplace_back(std::in_place, nullptr);
            return;
        }
        listed_.emplace(PathKey(path), path);
        slots_.emplace_back();
        places.push_back({place, std::move(namesakes)});
    }

    // The path, with each path that is listed under the same key.
    std::vector<Namesakes> NamesakesOf(const std::wstring& path) const {
        std::vector<Namesakes> found;
        const auto [first, last] = listed_.equal_range(PathKey(path));
        std::transform(first, last, std::back_inserter(found), [&](const auto& entry) {
            return Namesakes{path, entry.second};
        });
        return found;
    }

    // Those that are to be read. Without the lock: files are looked at, on a drive that may not answer.
    std::vector<std::size_t> SkipListed(const std::vector<Claimed>& claimed) {
        std::vector<std::size_t> places;
        for (const Claimed& claim : claimed) {
            if (std::ranges::any_of(claim.namesakes, IsOneFile)) {
                Put({&claim.place, 1}, {});
            } else {
                places.push_back(claim.place);
            }
        }
        return places;
    }

    std::vector<std::wstring> PathsAt(const std::vector<std::size_t>& places) const {
        std::vector<std::wstring> paths;
        paths.reserve(places.size());
        for (const std::size_t place : places) {
            paths.push_back(paths_[place]);
        }
        return paths;
    }

    // `results`: none for files that are listed already. `spent`: on reading them.
    void Put(std::span<const std::size_t> places, std::vector<InspectedPtr> results,
             Clock::duration spent = {}) {
        const std::lock_guard guard(lock_);
        read_ += results.size();
        spent_ += spent;
        results.resize(places.size());
        for (std::size_t i = 0; i < places.size() && !closed_; ++i) {
            slots_[places[i] + slots_.size() - next_] = std::move(results[i]);
        }
    }

    const std::vector<std::wstring> paths_;
    std::unordered_multimap<std::wstring, std::wstring> listed_;  ///< paths by key, those being read too
    const std::function<std::wstring(const std::wstring&)> buddy_;
    const std::function<std::vector<InspectedPtr>(std::span<const std::wstring>)> inspect_;
    const std::size_t pathsAtOnce_;
    std::mutex lock_;
    std::condition_variable_any changed_;
    std::deque<Slot> slots_;  ///< of the files before `next_` that nobody has taken; empty: being read
    std::size_t next_ = 0;    ///< the first path that nobody reads yet
    bool closed_ = false;
    std::optional<std::stop_token> stop_;  ///< while it runs
    std::vector<std::jthread> others_;     ///< the readers beside the thread that runs, which is number 0
    std::size_t wanted_ = 1;               ///< so many of the readers take files; the others wait
    std::size_t read_ = 0;                 ///< files since the last poll
    Clock::duration spent_{};              ///< on them, by all readers
    std::exception_ptr failure_;
};

// The side of the run that lives on the user-interface thread.
class Delivery {
  public:
    /// `rowsToAsk`: rows that are still missing when the question comes; nullopt: it does not.
    Delivery(const AddingDescription& description, const Steps& steps, std::shared_ptr<Reading> reading,
             std::optional<std::size_t> rowsToAsk, UserPrompts& prompts, Kst::ProgressIf& progress)
        : description_(description),
          steps_(steps),
          reading_(std::move(reading)),
          rowsToAsk_(rowsToAsk),
          prompts_(prompts),
          progress_(progress) {
        summary_.offered = reading_->Paths().size();
        progress_.SetRange(summary_.offered);
        ShowProgress();
    }
    ~Delivery() { reading_->Close(); }
    Delivery(const Delivery&) = delete;
    Delivery& operator=(const Delivery&) = delete;

    PollResult Poll() {
        for (InspectedPtr& result : reading_->TakeReady()) {
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
                summary_.abandonedPath = reading_->Paths()[looked_];
            }
            const auto& paths = reading_->Paths();
            summary_.unread.assign(paths.begin() + static_cast<std::ptrdiff_t>(looked_), paths.end());
        }
        return std::move(summary_);
    }

  private:
    bool MustAsk() const { return summary_.added + batch_.size() == rowsToAsk_; }

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
    std::shared_ptr<Reading> reading_;
    std::optional<std::size_t> rowsToAsk_;
    UserPrompts& prompts_;
    Kst::ProgressIf& progress_;
    AddingSummary summary_;
    std::size_t looked_ = 0;
    std::vector<InspectedPtr> batch_;
    Clock::time_point lastFlush_ = Clock::now();
};

}  // namespace

std::size_t NextReaders(std::size_t readers, std::size_t files, std::chrono::nanoseconds spent) {
    const bool isWorthOneMore = spent >= kWorthAReader * files;
    return isWorthOneMore ? std::min(readers + 1, kMostReaders) : std::max<std::size_t>(readers - 1, 1);
}

AddingSummary Run(const AddingDescription& description, AddingRequest request, const Steps& steps,
                  UserPrompts& prompts, Kst::ProgressIf& progress) {
    if (request.paths.empty()) {
        return {};
    }
    const bool asks = request.asksAtMany && description.confirmText.value != 0 &&
                      request.rowsBefore < description.confirmAtRows;
    const auto rowsToAsk =
        asks ? std::optional(description.confirmAtRows - request.rowsBefore) : std::nullopt;
    const auto reading = std::make_shared<Reading>(std::move(request), description.buddy, steps);
    Delivery delivery(description, steps, reading, rowsToAsk, prompts, progress);
    const RunEnd end = RunInBackground([reading](const std::stop_token& stop) { reading->Run(stop); },
                                       progress, [&delivery] { return delivery.Poll(); });
    return delivery.Finish(end);
}

}  // namespace adding
}  // namespace orvex
