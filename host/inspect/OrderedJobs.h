#pragma once
#include <algorithm>
#include <condition_variable>
#include <cstddef>
#include <functional>
#include <mutex>
#include <optional>
#include <thread>
#include <vector>

namespace orvex {

/// Runs `work(i)` for i from 0 to count-1 on several threads and passes the results to `take` in order, on
/// the calling thread. At most `8 * jobs` results wait at a time, which bounds the memory when one item is
/// slow. `work` must not throw. The run ends early when `take` returns false or `stop` returns true.
template <typename Result>
class OrderedJobs {
  public:
    OrderedJobs(std::size_t count, unsigned jobs, std::function<Result(std::size_t)> work)
        : count_(count),
          jobs_(std::max(1U, jobs)),
          work_(std::move(work)),
          slots_(std::min<std::size_t>(std::max<std::size_t>(count, 1), std::size_t{8} * jobs_)) {}

    /// Returns true if every result was taken.
    bool Run(const std::function<bool(std::size_t, Result&&)>& take, const std::function<bool()>& stop) {
        std::vector<std::jthread> threads;
        const std::size_t wanted = std::min<std::size_t>(jobs_, count_);
        threads.reserve(wanted);
        for (std::size_t i = 0; i < wanted; ++i) {
            threads.emplace_back([this] { Work(); });
        }
        const bool complete = TakeAll(take, stop);
        {
            const std::lock_guard guard(lock_);
            stopped_ = true;
        }
        spaceFree_.notify_all();
        return complete;
    }

  private:
    void Work() {
        for (;;) {
            std::size_t index = 0;
            {
                std::unique_lock guard(lock_);
                spaceFree_.wait(
                    guard, [&] { return stopped_ || next_ >= count_ || next_ < taken_ + slots_.size(); });
                if (stopped_ || next_ >= count_) {
                    return;
                }
                index = next_++;
            }
            Result result = work_(index);
            {
                const std::lock_guard guard(lock_);
                slots_[index % slots_.size()] = std::move(result);
            }
            resultReady_.notify_one();
        }
    }

    bool TakeAll(const std::function<bool(std::size_t, Result&&)>& take, const std::function<bool()>& stop) {
        for (std::size_t i = 0; i < count_; ++i) {
            std::optional<Result> result;
            {
                std::unique_lock guard(lock_);
                auto& slot = slots_[i % slots_.size()];
                // A signal handler cannot notify, so `stop` is polled.
                while (!resultReady_.wait_for(guard, std::chrono::milliseconds(50),
                                              [&] { return slot.has_value(); })) {
                    if (stop()) {
                        return false;
                    }
                }
                result.swap(slot);
                taken_ = i + 1;
            }
            spaceFree_.notify_all();
            if (stop() || !take(i, std::move(*result))) {
                return false;
            }
        }
        return true;
    }

    const std::size_t count_;
    const unsigned jobs_;
    const std::function<Result(std::size_t)> work_;
    std::mutex lock_;
    std::condition_variable spaceFree_;
    std::condition_variable resultReady_;
    std::vector<std::optional<Result>> slots_;
    std::size_t next_ = 0;
    std::size_t taken_ = 0;
    bool stopped_ = false;
};

}  // namespace orvex
