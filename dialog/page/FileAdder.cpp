#include "dialog/page/FileAdder.h"

#include <algorithm>
#include <chrono>
#include <map>
#include <optional>
#include <utility>

#include "dialog/page/BackgroundRun.h"
#include "dialog/page/ReadingThreads.h"
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

using Place = ReadQueue::Place;
using Taken = ReadQueue::Taken;

constexpr std::size_t kBatchLimit = 100;
constexpr auto kBatchEvery = std::chrono::milliseconds(30);
// Rows that are replaced cost time for all rows.
constexpr int kReplacingShare = 4;
constexpr std::size_t kProgressTextLimit = 256;

// The side of the run that lives on the user-interface thread.
class Delivery {
  public:
    /// `rowsToAsk`: rows that are still missing when the question comes; nullopt: it does not.
    Delivery(const AddingDescription& description, const Steps& steps,
             std::shared_ptr<ReadingThreads> reading, std::optional<std::size_t> rowsToAsk,
             UserPrompts& prompts, Kst::ProgressIf& progress)
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
        if (steps_.mustSkip && steps_.mustSkip()) {
            Skip();
        }
        for (Taken& taken : reading_->Take()) {
            Use(std::move(taken));
            if (rows_ == rowsToAsk_ && !MayGoOn()) {
                summary_.stopped = true;
                return PollResult::Abandon;
            }
        }
        FlushInTime();
        TellAwaited();
        // What was skipped is not waited for.
        const bool isAllThere = hasSkipped_ && looked_ == summary_.offered && awaited_.empty();
        return isAllThere ? PollResult::Abandon : PollResult::GoOn;
    }

    AddingSummary Finish(RunEnd end) {
        const bool refused = summary_.stopped;
        const bool isAllThere = looked_ == summary_.offered && awaited_.empty();
        if (end != RunEnd::Finished && !isAllThere) {
            summary_.stopped = true;
            if (end == RunEnd::Abandoned && !refused) {
                summary_.abandonedPath = reading_->PathInWork();
            }
        }
        if (!refused) {
            UseRest();
        }
        LeaveRest();
        Flush();
        RemoveAwaited(AwaitedPlaces());
        TellAwaited();
        std::ranges::sort(unread_);
        for (const Place place : unread_) {
            summary_.unread.push_back(reading_->Paths()[place]);
        }
        return std::move(summary_);
    }

  private:
    void Use(Taken taken) {
        const auto awaited = awaited_.find(taken.place);
        if (awaited != awaited_.end()) {
            UseLate(std::move(taken), awaited->second);
            return;
        }
        ++looked_;
        switch (taken.state) {
            case Taken::State::Listed:
                ++summary_.skipped;
                break;
            case Taken::State::Skipped:
                unread_.push_back(taken.place);
                break;
            case Taken::State::Awaited:
                awaited_.emplace(taken.place, rows_);
                Append(AwaitedRecord(taken.place));
                break;
            case Taken::State::Read:
                ++summary_.added;
                Append(std::move(taken.record));
                break;
        }
        ShowProgress();
    }

    void UseLate(Taken taken, std::size_t row) {
        if (taken.state == Taken::State::Read) {
            ++summary_.added;
            awaited_.erase(taken.place);
            read_.push_back({row, std::move(taken.record)});
        } else {
            ++summary_.skipped;
            Flush();  // rows get other numbers
            RemoveRows({taken.place});
        }
        ShowProgress();
    }

    InspectedPtr AwaitedRecord(Place place) const {
        const std::wstring& path = reading_->Paths()[place];
        return steps_.await(path, FormatText(Text(text::kWaitingFor), {FolderOf(path)}));
    }

    void Append(InspectedPtr record) {
        ++rows_;
        batch_.push_back(std::move(record));
        if (batch_.size() >= kBatchLimit) {
            FlushBatch();
        }
    }

    // Asked once.
    bool MayGoOn() {
        rowsToAsk_.reset();
        Flush();
        const std::wstring text =
            FormatText(Text(description_.confirmText), {static_cast<std::int64_t>(summary_.offered)});
        return prompts_.Show({text, Text(description_.confirmCaption), PromptIcon::Question,
                              PromptButtons::YesNo}) == PromptAnswer::Yes;
    }

    void FlushInTime() {
        const Clock::time_point now = Clock::now();
        if (now - lastBatch_ >= kBatchEvery) {
            FlushBatch();
        }
        if (now - lastReplacing_ >= std::max<Clock::duration>(kBatchEvery, kReplacingShare * replacing_)) {
            Flush();
        }
    }

    void FlushBatch() {
        lastBatch_ = Clock::now();
        if (!batch_.empty()) {
            steps_.append(std::exchange(batch_, {}));
        }
    }

    void Flush() {
        FlushBatch();
        lastReplacing_ = Clock::now();
        if (!read_.empty()) {
            std::ranges::sort(read_, {}, &Replacement::row);
            steps_.replace(std::exchange(read_, {}));
            replacing_ = Clock::now() - std::exchange(lastReplacing_, Clock::now());
        }
    }

    void Skip() {
        Flush();
        RemoveAwaited(reading_->Skip(AwaitedPlaces()));
        hasSkipped_ = true;
    }

    std::vector<Place> AwaitedPlaces() const {
        std::vector<Place> places;
        for (const auto& [place, row] : awaited_) {
            places.push_back(place);
        }
        return places;
    }

    /// Removes the rows of files that are not read in this run.
    void RemoveAwaited(const std::vector<Place>& places) {
        unread_.insert(unread_.end(), places.begin(), places.end());
        RemoveRows(places);
    }

    // `places`: ascending, of files that are awaited. All rows are in the grid.
    void RemoveRows(const std::vector<Place>& places) {
        if (places.empty()) {
            return;
        }
        std::vector<std::size_t> rows;
        auto place = places.begin();
        for (auto entry = awaited_.begin(); entry != awaited_.end();) {
            if (place != places.end() && *place == entry->first) {
                rows.push_back(entry->second);
                entry = awaited_.erase(entry);
                ++place;
            } else {
                entry->second -= rows.size();
                ++entry;
            }
        }
        rows_ -= rows.size();
        steps_.remove(rows);
    }

    void UseRest() {
        for (Taken& taken : reading_->TakeRest()) {
            Use(std::move(taken));
        }
    }

    /// What is not used, or was not even planned.
    void LeaveRest() {
        for (; looked_ < summary_.offered; ++looked_) {
            unread_.push_back(looked_);
        }
    }

    void TellAwaited() {
        if (std::exchange(told_, awaited_.size()) != awaited_.size() && steps_.tellAwaited) {
            steps_.tellAwaited(awaited_.size());
        }
    }

    void ShowProgress() {
        const std::size_t done = looked_ - awaited_.size();
        const std::size_t ordinal = std::min(done + 1, summary_.offered);
        progress_.SetText(
            FormatText(Text(description_.progressText), {ordinal, summary_.offered}, kProgressTextLimit));
        progress_.SetPosition(done);
    }

    const AddingDescription& description_;
    const Steps& steps_;
    std::shared_ptr<ReadingThreads> reading_;
    std::optional<std::size_t> rowsToAsk_;
    UserPrompts& prompts_;
    Kst::ProgressIf& progress_;
    AddingSummary summary_;
    std::size_t looked_ = 0;                ///< files whose turn has come
    std::size_t rows_ = 0;                  ///< in the grid and in `batch_`
    std::map<Place, std::size_t> awaited_;  ///< the rows of files that are awaited
    std::vector<Place> unread_;
    bool hasSkipped_ = false;
    std::size_t told_ = 0;
    std::vector<InspectedPtr> batch_;
    std::vector<Replacement> read_;
    Clock::time_point lastBatch_ = Clock::now();
    Clock::time_point lastReplacing_ = Clock::now();
    Clock::duration replacing_{};  ///< time of the last time
};

}  // namespace

AddingSummary Run(const AddingDescription& description, AddingRequest request, const Steps& steps,
                  UserPrompts& prompts, Kst::ProgressIf& progress) {
    if (request.paths.empty()) {
        return {};
    }
    const bool asks = request.asksAtMany && description.confirmText.value != 0 &&
                      request.rowsBefore < description.confirmAtRows;
    const auto rowsToAsk =
        asks ? std::optional(description.confirmAtRows - request.rowsBefore) : std::nullopt;
    const auto reading = std::make_shared<ReadingThreads>(std::move(request), description.buddy, steps);
    Delivery delivery(description, steps, reading, rowsToAsk, prompts, progress);
    const RunEnd end = RunInBackground([reading](const std::stop_token& stop) { reading->Run(stop); },
                                       progress, [&delivery] { return delivery.Poll(); });
    return delivery.Finish(end);
}

}  // namespace adding
}  // namespace orvex
