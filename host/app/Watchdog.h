#pragma once
#include <chrono>
#include <condition_variable>
#include <mutex>
#include <string>
#include <thread>

namespace orvex {

/// Ends the process with kWatchdogExit when it outlives its time, after telling on the standard error stream
/// what was waited for. It has a thread of its own: a blocked event loop does not stop it.
class Watchdog {
  public:
    explicit Watchdog(std::chrono::seconds patience);
    ~Watchdog();
    Watchdog(const Watchdog&) = delete;
    Watchdog& operator=(const Watchdog&) = delete;

    /// What is waited for from now on.
    void WaitingFor(const std::string& what);

  private:
    void Watch();

    const std::chrono::steady_clock::time_point end_;
    std::mutex lock_;
    std::condition_variable ended_;
    bool done_ = false;
    std::string what_;
    std::jthread thread_;
};

inline constexpr int kWatchdogExit = 4;

}  // namespace orvex
