#pragma once
// Times of files as the system gives them.
#include <ctime>

#include <chrono>

#include "support/Files.h"

namespace orvex {

inline FileTime FileTimeOf(const timespec& time) {
    return FileTime(std::chrono::seconds(time.tv_sec)) +
           std::chrono::floor<FileTime::duration>(std::chrono::nanoseconds(time.tv_nsec));
}

}  // namespace orvex
