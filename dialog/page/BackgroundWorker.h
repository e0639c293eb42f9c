#pragma once
#include <chrono>
#include <exception>
#include <functional>
#include <memory>
#include <stop_token>
#include <thread>

namespace orvex {

/// A thread that does one thing. When this object goes before the work has ended, the work is asked to stop
/// and goes on by itself until it returns: it must own whatever it touches.
class BackgroundWorker {
  public:
    explicit BackgroundWorker(std::function<void(std::stop_token)> work);
    ~BackgroundWorker();
    BackgroundWorker(const BackgroundWorker&) = delete;
    BackgroundWorker& operator=(const BackgroundWorker&) = delete;

    void RequestStop();
    /// True if the work has ended, and what it owned is gone.
    bool WaitForEnd(std::chrono::milliseconds most);
    /// What the work has thrown; null if nothing, or it has not ended.
    std::exception_ptr Failure() const;

  private:
    struct Shared;

    bool LeaveBehind();

    std::shared_ptr<Shared> shared_;
    std::thread thread_;
};

}  // namespace orvex
