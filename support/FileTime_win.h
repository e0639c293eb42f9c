#pragma once
// Sizes and times of files as the system gives them.
#include <windows.h>

#include <chrono>
#include <cstdint>

#include "support/Files.h"

namespace orvex {

inline std::uint64_t Joined(DWORD high, DWORD low) {
    return std::uint64_t{high} << 32U | low;
}

inline FileTime FileTimeOf(const FILETIME& time) {
    constexpr std::chrono::sys_days kFirstDay = std::chrono::year{1601} / std::chrono::January / 1;
    return FileTime(kFirstDay) +
           FileTime::duration(static_cast<std::int64_t>(Joined(time.dwHighDateTime, time.dwLowDateTime)));
}

}  // namespace orvex
