#pragma once
#include <atomic>
#include <condition_variable>
#include <cstdint>
#include <exception>
#include <functional>
#include <mutex>
#include <thread>
#include <vector>

#include "support/ProgressIf.h"

namespace orvex {

/// What QvrWork::Run throws when the user has stopped.
struct QvrCancelled {};

/// Phases of building a companion, each a third of its progress.
enum class QvrPhase { Reading, Ordering, Writing };

/// Tasks on several threads, while the calling thread reports their progress and asks for cancellation.
class QvrWork {
  public:
    QvrWork(unsigned threads, Kst::ProgressIf& progress);

    unsigned Threads() const { return threads_; }
    /// Starts a phase of `total` points, or starts it again; `file` names what is built.
    void Begin(QvrPhase phase, const std::wstring& file, std::uint64_t total);
    /// Calls `task` for the numbers from 0 to `count` - 1, each once, on the threads. Throws what the first
    /// failed task threw, or QvrCancelled, when all threads are back.
    void Run(std::uint64_t count, const std::function<void(std::uint64_t)>& task);
    /// Reports points of the phase as done; any thread.
    void Done(std::uint64_t points) { done_ += points; }
    /// True if tasks should end early; any thread.
    bool IsStopped() const { return stopped_; }

  private:
    void Start(std::vector<std::jthread>& threads, const std::function<void()>& run);
    void RunTasks(std::uint64_t count, const std::function<void(std::uint64_t)>& task);
    void WaitForThreads();
    void Report();

    const unsigned threads_;
    Kst::ProgressIf& progress_;
    std::uint64_t before_ = 0;  // progress of earlier phases
    std::uint64_t told_ = 0;
    std::uint64_t total_ = 0;
    std::atomic<std::uint64_t> done_ = 0;
    std::atomic<std::uint64_t> next_ = 0;
    std::atomic<bool> stopped_ = false;
    bool cancelled_ = false;
    std::mutex lock_;  // of what follows
    std::condition_variable ended_;
    unsigned running_ = 0;
    std::exception_ptr failure_;
};

}  // namespace orvex
