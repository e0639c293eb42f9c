#include "cloud/page/RemoteRun.h"

#include <QElapsedTimer>
#include <algorithm>
#include <mutex>
#include <stop_token>
#include <system_error>
#include <thread>
#include <utility>

#include "dialog/page/BackgroundRun.h"
#include "support/Format.h"
#include "support/LDataError.h"
#include "support/ProgressIf.h"
#include "support/SignedUrl.h"

namespace orvex {
namespace {

constexpr std::size_t kMostReaders = 4;
constexpr qint64 kBatchEveryMs = 250;

// What the threads of a run own; it may outlive the run.
class Reading {
  public:
    Reading(std::vector<std::wstring> urls, InspectRemote inspect)
        : urls_(std::move(urls)), inspect_(std::move(inspect)), waiting_(kMostReaders) {}

    std::size_t Count() const { return urls_.size(); }

    void Run(const std::stop_token& stop) {
        std::vector<std::jthread> others;
        for (std::size_t reader = 1; reader < std::min(kMostReaders, urls_.size()); ++reader) {
            try {
                others.emplace_back([this, reader, stop] { Read(reader, stop); });
            } catch (const std::system_error&) {
                break;  // the system refuses a thread: those that there are do the work
            }
        }
        Read(0, stop);
    }

    std::vector<Inspected> Take() {
        const std::lock_guard guard(lock_);
        return std::exchange(done_, {});
    }

    std::size_t Ended() const {
        const std::lock_guard guard(lock_);
        return ended_;
    }

    /// Why one of the files takes longer; empty: none does.
    std::wstring Waiting() const {
        const std::lock_guard guard(lock_);
        const auto found =
            std::ranges::find_if(waiting_, [](const std::wstring& text) { return !text.empty(); });
        return found == waiting_.end() ? std::wstring() : *found;
    }

  private:
    void Read(std::size_t reader, const std::stop_token& stop) {
        const CloudCall call{[stop] { return stop.stop_requested(); },
                             [this, reader](const std::wstring& text) { SetWaiting(reader, text); }};
        for (std::size_t index = Claim(stop); index < urls_.size(); index = Claim(stop)) {
            Put(index, Inspect(urls_[index], call));
            SetWaiting(reader, {});
        }
    }

    std::shared_ptr<const RemoteLas> Inspect(const std::wstring& url, const CloudCall& call) const {
        try {
            return std::make_shared<const RemoteLas>(inspect_(url, call));
        } catch (...) {
            auto failed = std::make_shared<RemoteLas>();
            failed->row = UnreadLasFile(ShownUrl(url), CurrentExceptionText());
            failed->status = CloudStatus::BadAnswer;
            return failed;
        }
    }

    /// The next URL; their number when there is nothing left to do.
    std::size_t Claim(const std::stop_token& stop) {
        const std::lock_guard guard(lock_);
        return stop.stop_requested() || next_ == urls_.size() ? urls_.size() : next_++;
    }

    void Put(std::size_t index, std::shared_ptr<const RemoteLas> remote) {
        const std::lock_guard guard(lock_);
        ++ended_;
        if (remote->status != CloudStatus::Cancelled) {
            done_.push_back({index, std::move(remote)});
        }
    }

    void SetWaiting(std::size_t reader, const std::wstring& text) {
        const std::lock_guard guard(lock_);
        waiting_[reader] = text;
    }

    const std::vector<std::wstring> urls_;
    const InspectRemote inspect_;
    mutable std::mutex lock_;
    std::vector<Inspected> done_;        ///< that nobody has taken
    std::vector<std::wstring> waiting_;  ///< by reader
    std::size_t next_ = 0;
    std::size_t ended_ = 0;
};

}  // namespace

void InspectRemotes(std::vector<std::wstring> urls, const InspectRemote& inspect, Kst::ProgressIf& progress,
                    const std::function<void(std::vector<Inspected> batch)>& deliver) {
    const auto reading = std::make_shared<Reading>(std::move(urls), inspect);
    QElapsedTimer sinceBatch;
    sinceBatch.start();
    std::wstring shown;
    const auto deliverReady = [&] {
        if (std::vector<Inspected> batch = reading->Take(); !batch.empty()) {
            deliver(std::move(batch));
        }
        sinceBatch.restart();
    };
    const auto tell = [&] {
        const std::size_t ended = reading->Ended();
        std::wstring text = reading->Waiting();
        if (text.empty()) {
            text = FormatText(Text(text::kCloudLookingProgress), {ended, reading->Count()});
        }
        if (text != shown) {
            progress.SetText(shown = std::move(text));
            progress.SetPosition(ended);
        }
        if (sinceBatch.elapsed() >= kBatchEveryMs) {
            deliverReady();
        }
        return PollResult::GoOn;
    };
    progress.SetRange(reading->Count());
    RunInBackground([reading](const std::stop_token& stop) { reading->Run(stop); }, progress, tell);
    deliverReady();
}

}  // namespace orvex
