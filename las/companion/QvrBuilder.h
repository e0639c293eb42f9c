#pragma once
#include <cstdint>
#include <optional>
#include <string>

#include "support/ProgressIf.h"

namespace orvex {

struct QvrSettings {
    std::uint16_t factor = 10;  ///< thinning factor; a greater one gives fewer entries; 0 counts as 1
    /// Bytes that the builder may use. Where they do not suffice for all threads, fewer work. With less than
    /// 32 MiB, and for more than some 10^8 points with 512 MiB, it needs more; the plan tells how much.
    std::uint64_t memory = std::uint64_t{512} << 20U;
    unsigned threads = 0;    ///< 0: one per processor
    std::uint64_t seed = 0;  ///< of the random order
    /// Representatives at random, else the first in the file; nullopt: at random unless the marker file
    /// exists.
    std::optional<bool> randomOrder;
    std::wstring target;           ///< empty: QvrPathOf the source
    bool replaceExisting = false;  ///< otherwise a file at the target is an error, also one that appears late
};

/// Needs of a companion, before anything is written.
struct QvrPlan {
    std::wstring source;
    std::wstring target;
    std::uint64_t points = 0;
    std::uint64_t targetBytes = 0;     ///< of the companion, at most
    std::uint64_t temporaryBytes = 0;  ///< beside it while it is built, at most
    std::uint64_t memoryBytes = 0;     ///< in memory while it is built, at most
};

/// Path of a file's companion: beside it, with the extension "qvr".
std::wstring QvrPathOf(const std::wstring& source);

/// Plans the companion of a LAS or LAZ file. Throws LDataError if the source cannot be read or is not
/// complete, if a file at the target is not to be replaced or cannot be, or if the drive has not enough
/// space.
QvrPlan PlanQvr(const std::wstring& source, const QvrSettings& settings = {});

/// Builds a planned companion, under a temporary name until it is complete; progress is called from this
/// thread only, with one range for all phases. The file is the same for every number of threads and every
/// amount of memory. Returns false if cancelled. Throws LDataError. After a cancellation and a failure, what
/// was at the target is still there and nothing else.
bool BuildQvr(const QvrPlan& plan, const QvrSettings& settings, Kst::ProgressIf& progress);

}  // namespace orvex
