#pragma once
#include <algorithm>
#include <chrono>
#include <condition_variable>
#include <cstddef>
#include <functional>
#include <mutex>
#include <optional>
#include <system_error>
#include <thread>
#include <vector>

namespace orvex {

/// Runs `work(i)` for i from 0 to count-1 on several threads and passes the results to `take` in order, on
/// the calling thread. At most `8 * jobs` results wait at a time, which bounds the memory when one item is
/// slow. `work` must not throw. The run ends early when `take` returns false or throws, or `stop` returns
/// true. Where the system refuses a thread, the work is done by those there are, the calling one if there is
/// none.
template <typename Result>
class OrderedJobs {
  public:
    /// Returns a running thread, or throws std::system_error.
    using StartThread = std::function<std::jthread(std::function<void()>)>;

    OrderedJobs(
        std::size_t count, unsigned jobs, std::function<Result(std::size_t)> work,
        StartThread start = [](const std::function<void()>& run) { return std::jthread(run); })
        : count_(count),
          jobs_(std::max(1U, jobs)),
          work_(std::move(work)),
          start_(std::move(start)),
          slots_(std::min<std::size_t>(std::max<std::size_t>(count, 1), std::size_t{8} * jobs_)) {}

    /// Returns true if every result was taken.
    bool Run(const std::function<bool(std::size_t, Result&&)>& take, const std::function<bool()>& stop) {
        std::vector<std::jthread> threads;
        const Ending ending{*this};
        const std::size_t wanted = std::min<std::size_t>(jobs_, count_);
        threads.reserve(wanted);
        try {
            while (threads.size() < wanted) {
                threads.push_back(start_([this] { Work(); }));
            }
        } catch (const std::system_error&) {
            // There are fewer than wanted.
        }
        return TakeAll(take, stop, threads.empty());
    }

  private:
    /// Sends the threads home, before they are waited for.
    struct Ending {
        OrderedJobs& jobs;
        ~Ending() {
            {
                const std::lock_guard guard(jobs.lock_);
                jobs.stopped_ = true;
            }
            jobs.spaceFree_.notify_all();
        }
    };

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

    bool TakeAll(const std::function<bool(std::size_t, Result&&)>& take, const std::function<bool()>& stop,
                 bool isAlone) {
        for (std::size_t i = 0; i < count_; ++i) {
            std::optional<Result> result = isAlone ? std::optional<Result>(work_(i)) : Await(i, stop);
            if (!result || stop() || !take(i, std::move(*result))) {
                return false;
            }
        }
        return true;
    }

    /// The result of an item; nullopt when stopped.
    std::optional<Result> Await(std::size_t i, const std::function<bool()>& stop) {
        std::optional<Result> result;
        {
            std::unique_lock guard(lock_);
            auto& slot = slots_[i % slots_.size()];
            // A signal handler cannot notify, so `stop` is polled.
            while (!resultReady_.wait_for(guard, std::chrono::milliseconds(50),
                                          [&] { return slot.has_value(); })) {
                if (stop()) {
                    return std::nullopt;
                }
            }
            result.swap(slot);
            taken_ = i + 1;
        }
        spaceFree_.notify_all();
        return result;
    }

    const std::size_t count_;
    const unsigned jobs_;
    const std::function<Result(std::size_t)> work_;
    const StartThread start_;
    std::mutex lock_;
    std::condition_variable spaceFree_;
    std::condition_variable resultReady_;
    std::vector<std::optional<Result>> slots_;
    std::size_t next_ = 0;
    std::size_t taken_ = 0;
    bool stopped_ = false;
};

}  // namespace orvex
