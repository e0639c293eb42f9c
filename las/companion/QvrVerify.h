#pragma once
#include <cstdint>
#include <string>

#include "las/companion/QvrFile.h"
#include "support/ProgressIf.h"

namespace orvex {

/// Sum of the hashes of point records: the same for every order of the same records, and another for other
/// records but by a chance of one in 2^128.
struct PointSum {
    std::uint64_t first = 0;
    std::uint64_t second = 0;

    PointSum& operator+=(const PointSum& other) {
        first += other.first;
        second += other.second;
        return *this;
    }
    friend bool operator==(const PointSum&, const PointSum&) = default;
};

/// Reads all points of a QVR file: each must lie in its entry's octant, and those of a generation in the
/// order of their cells. Returns their sum, or one of zeros if cancelled. Throws LDataError.
PointSum VerifyQvrPoints(const QvrFile& qvr, Kst::ProgressIf& progress);

/// Sum of the points of a LAS or LAZ file; one of zeros if cancelled. Throws LDataError.
PointSum SumOfPoints(const std::wstring& path, Kst::ProgressIf& progress);

}  // namespace orvex
