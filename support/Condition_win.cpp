#include <windows.h>

#include <algorithm>

#include "support/Condition.h"

namespace orvex {
namespace {

static_assert(sizeof(SRWLOCK) == sizeof(void*) && sizeof(CONDITION_VARIABLE) == sizeof(void*));

PSRWLOCK Lock(void** place) {
    return reinterpret_cast<PSRWLOCK>(place);
}
PCONDITION_VARIABLE Variable(void** place) {
    return reinterpret_cast<PCONDITION_VARIABLE>(place);
}

}  // namespace

void Mutex::lock() noexcept {
    AcquireSRWLockExclusive(Lock(&lock_));
}

void Mutex::unlock() noexcept {
    ReleaseSRWLockExclusive(Lock(&lock_));
}

void Condition::notify_one() noexcept {
    WakeConditionVariable(Variable(&condition_));
}

void Condition::notify_all() noexcept {
    WakeAllConditionVariable(Variable(&condition_));
}

void Condition::Sleep(Mutex& mutex, std::chrono::milliseconds time) noexcept {
    constexpr std::chrono::milliseconds kDay = std::chrono::hours(24);
    const auto bounded = static_cast<DWORD>(std::min(time, kDay).count());
    SleepConditionVariableSRW(Variable(&condition_), Lock(&mutex.lock_), bounded, 0);
}

}  // namespace orvex
