#include "support/Condition.h"

#include <gtest/gtest.h>

#include <atomic>
#include <thread>

namespace orvex {
namespace {

struct Signal {
    Mutex lock;
    Condition changed;
    bool done = false;

    void Set() {
        const std::lock_guard guard(lock);
        done = true;
        changed.notify_all();
    }
    bool WaitFor(std::chrono::milliseconds time) {
        std::unique_lock guard(lock);
        return changed.wait_for(guard, time, [this] { return done; });
    }
};

// A waiter whose time is over just when it is notified must neither hang nor miss it.
TEST(Condition, SurvivesANotificationAtTheEndOfTheTime) {
    using std::chrono::microseconds;
    constexpr int kRounds = 300;
    for (int round = 0; round < kRounds; ++round) {
        Signal signal;
        std::jthread setter([&signal, round] {
            std::this_thread::sleep_for(microseconds(1000 + round * 10 % 1000));
            signal.Set();
        });
        int waits = 0;
        while (!signal.WaitFor(std::chrono::milliseconds(1))) {
            ASSERT_LT(++waits, 10000);
        }
    }
}

TEST(Condition, AWaitEndsByItsTimeByANotificationOrAtOnce) {
    Signal signal;
    EXPECT_FALSE(signal.WaitFor(std::chrono::milliseconds(5)));
    {
        const std::jthread setter([&signal] { signal.Set(); });
        std::unique_lock guard(signal.lock);
        signal.changed.wait(guard, [&signal] { return signal.done; });
    }
    EXPECT_TRUE(signal.WaitFor(std::chrono::milliseconds(0)));
}

}  // namespace
}  // namespace orvex
