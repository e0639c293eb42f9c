#pragma once
// A mutex and a condition variable, with the members of the standard ones. On Windows the standard ones stand
// on winpthreads, whose timed wait (version 10) now and then hung for ever after the notification: there
// these are the system's own.
#include <chrono>
#include <condition_variable>
#include <mutex>

namespace orvex {

#ifdef _WIN32

class Mutex {
  public:
    Mutex() = default;
    Mutex(const Mutex&) = delete;
    Mutex& operator=(const Mutex&) = delete;

    void lock() noexcept;
    void unlock() noexcept;

  private:
    friend class Condition;
    void* lock_ = nullptr;  // an SRWLOCK, which is a pointer and starts as null
};

class Condition {
  public:
    Condition() = default;
    Condition(const Condition&) = delete;
    Condition& operator=(const Condition&) = delete;

    void notify_one() noexcept;
    void notify_all() noexcept;

    template <typename Predicate>
    void wait(std::unique_lock<Mutex>& guard, Predicate predicate) {
        while (!predicate()) {
            Sleep(*guard.mutex(), std::chrono::hours(1));
        }
    }
    template <typename Predicate>
    bool wait_until(std::unique_lock<Mutex>& guard, std::chrono::steady_clock::time_point end,
                    Predicate predicate) {
        while (!predicate()) {
            const auto now = std::chrono::steady_clock::now();
            if (now >= end) {
                return false;
            }
            Sleep(*guard.mutex(), std::chrono::ceil<std::chrono::milliseconds>(end - now));
        }
        return true;
    }
    template <typename Predicate>
    bool wait_for(std::unique_lock<Mutex>& guard, std::chrono::milliseconds time, Predicate predicate) {
        return wait_until(guard, std::chrono::steady_clock::now() + time, predicate);
    }

  private:
    /// Until notified or the time is over, and sometimes less; a day at most.
    void Sleep(Mutex& mutex, std::chrono::milliseconds time) noexcept;

    void* condition_ = nullptr;  // a CONDITION_VARIABLE, which is a pointer and starts as null
};

#else

using Mutex = std::mutex;
using Condition = std::condition_variable;

#endif

}  // namespace orvex
