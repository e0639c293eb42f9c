#include "dialog/page/BackgroundWorker.h"

#include <condition_variable>
#include <mutex>
#include <utility>

#include "support/ModuleUse.h"

namespace orvex {

struct BackgroundWorker::Shared {
    std::mutex lock;
    std::condition_variable ended;
    bool done = false;
    std::exception_ptr failure;
    std::stop_source stop;
    ModuleUse use;  // a worker that waits in vain for a drive outlives the call that started it

    void Work(std::function<void(std::stop_token)> work) {
        std::exception_ptr thrown;
        try {
            work(stop.get_token());
        } catch (...) {
            thrown = std::current_exception();
        }
        work = nullptr;  // what it owns is gone before the work counts as ended
        const std::lock_guard guard(lock);
        failure = thrown;
        done = true;
        ended.notify_all();
    }
};

// The thread is left behind while it works, otherwise joined, which costs nothing once the work has ended. A
// thread is never detached while it ends: seen with mingw-w64 10's winpthreads under Wine, once in some
// thousand times a thread that starts later then gets a null argument and the process ends. None did that
// after threads that were joined, or were detached well before their end.
BackgroundWorker::BackgroundWorker(std::function<void(std::stop_token)> work)
    : shared_(std::make_shared<Shared>()),
      thread_([shared = shared_, work = std::move(work)]() mutable { shared->Work(std::move(work)); }) {}

BackgroundWorker::~BackgroundWorker() {
    RequestStop();
    if (!LeaveBehind()) {
        thread_.join();
    }
}

void BackgroundWorker::RequestStop() {
    shared_->stop.request_stop();
}

bool BackgroundWorker::WaitForEnd(std::chrono::milliseconds most) {
    std::unique_lock guard(shared_->lock);
    return shared_->ended.wait_for(guard, most, [this] { return shared_->done; });
}

std::exception_ptr BackgroundWorker::Failure() const {
    const std::lock_guard guard(shared_->lock);
    return shared_->failure;
}

// False when the work has ended. The lock keeps the thread from ending meanwhile.
bool BackgroundWorker::LeaveBehind() {
    const std::lock_guard guard(shared_->lock);
    if (!shared_->done) {
        thread_.detach();
    }
    return !shared_->done;
}

}  // namespace orvex
