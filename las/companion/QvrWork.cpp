#include "las/companion/QvrWork.h"

#include <algorithm>
#include <chrono>
#include <system_error>

#include "support/Files.h"
#include "support/Format.h"
#include "support/Text.h"

namespace orvex {
namespace {

constexpr StringId kPhaseTexts[] = {text::kQvrReading, text::kQvrOrdering, text::kQvrWriting};
constexpr std::uint64_t kStepsPerPhase = 1000;

}  // namespace

QvrWork::QvrWork(unsigned threads, Kst::ProgressIf& progress) : threads_(threads), progress_(progress) {
    progress_.SetRange(std::size(kPhaseTexts) * kStepsPerPhase);
}

void QvrWork::Begin(QvrPhase phase, const std::wstring& file, std::uint64_t total) {
    const auto index = static_cast<std::size_t>(phase);
    done_ = 0;
    total_ = total;
    before_ = index * kStepsPerPhase;
    progress_.SetText(FormatText(Text(kPhaseTexts[index]), {FileNameOf(file)}));
}

void QvrWork::Run(std::uint64_t count, const std::function<void(std::uint64_t)>& task) {
    next_ = 0;
    failure_ = nullptr;
    Report();
    {
        std::vector<std::jthread> threads;
        running_ = static_cast<unsigned>(std::min<std::uint64_t>(threads_, count));
        Start(threads, [&] { RunTasks(count, task); });
        WaitForThreads();
    }
    if (failure_) {
        std::rethrow_exception(failure_);
    }
    Report();
    if (cancelled_) {
        throw QvrCancelled();
    }
}

void QvrWork::Start(std::vector<std::jthread>& threads, const std::function<void()>& run) {
    const unsigned wanted = running_;
    try {
        while (threads.size() < wanted) {
            threads.emplace_back(run);
        }
    } catch (const std::system_error&) {
        if (threads.empty()) {
            throw;
        }
        // The system has no further thread; those that there are do everything.
        const std::lock_guard guard(lock_);
        running_ -= wanted - static_cast<unsigned>(threads.size());
    }
}

void QvrWork::RunTasks(std::uint64_t count, const std::function<void(std::uint64_t)>& task) {
    std::exception_ptr failure;
    try {
        for (std::uint64_t i = next_++; i < count && !stopped_; i = next_++) {
            task(i);
        }
    } catch (...) {
        failure = std::current_exception();
        stopped_ = true;
    }
    const std::lock_guard guard(lock_);
    if (failure && !failure_) {
        failure_ = failure;
    }
    --running_;
    ended_.notify_one();
}

void QvrWork::WaitForThreads() {
    std::unique_lock guard(lock_);
    while (running_ != 0) {
        // The system clock, because the thread sanitizer does not know the call behind the other one.
        ended_.wait_until(guard, std::chrono::system_clock::now() + std::chrono::milliseconds(50));
        guard.unlock();
        Report();
        guard.lock();
    }
}

void QvrWork::Report() {
    // Points that have to be distributed once more count again.
    const double share = total_ == 0 ? 1 : static_cast<double>(done_) / static_cast<double>(total_);
    told_ = std::max(told_, before_ + static_cast<std::uint64_t>(std::min(share, 1.0) * kStepsPerPhase));
    progress_.SetPosition(told_);
    if (!cancelled_ && progress_.IsCancelled()) {
        cancelled_ = true;
        stopped_ = true;
    }
}

}  // namespace orvex
