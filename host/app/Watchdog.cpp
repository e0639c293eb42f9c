#include "host/app/Watchdog.h"

#include <cstdlib>
#include <iostream>

namespace orvex {

Watchdog::Watchdog(std::chrono::seconds patience)
    : end_(std::chrono::steady_clock::now() + patience),
      what_("the program to start"),
      thread_([this] { Watch(); }) {}

Watchdog::~Watchdog() {
    {
        const std::lock_guard guard(lock_);
        done_ = true;
    }
    ended_.notify_all();
}

void Watchdog::WaitingFor(const std::string& what) {
    const std::lock_guard guard(lock_);
    what_ = what;
}

void Watchdog::Watch() {
    std::unique_lock guard(lock_);
    if (ended_.wait_until(guard, end_, [this] { return done_; })) {
        return;
    }
    std::cerr << "orvex-host: gave up; it was waiting for " << what_ << std::endl;
    std::_Exit(kWatchdogExit);
}

}  // namespace orvex
