#pragma once
// Point data of a file, mapped piece by piece on request.
#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>

#include "las/LasHeader.h"
#include "support/MappedFile.h"

namespace orvex {

/// A box in X, Y, Z.
struct LasExtent {
    std::array<double, 3> minimum{};
    std::array<double, 3> maximum{};
    friend bool operator==(const LasExtent&, const LasExtent&) = default;
};

/// One eighth of an extent, split at the midpoints. `child` is 0 to 7: bit value 4 takes the upper half in X,
/// 2 in Y, 1 in Z; a clear bit takes the lower half. Higher bits are ignored.
LasExtent Octant(const LasExtent& extent, unsigned child);

/// Scale, offset and extent from the header: what coordinates are computed with.
struct LasPointFrame {
    std::array<double, 3> scale{};
    std::array<double, 3> offset{};
    LasExtent extent;
};

/// Whole point records in memory. Point numbers count from 0 over the whole file. Move-only.
class LasPointView {
  public:
    LasPointView(MappedView view, std::uint64_t skip, std::uint64_t firstPoint, std::uint64_t count,
                 std::uint16_t recordLength, const LasPointFrame& frame);

    std::uint64_t FirstPoint() const { return firstPoint_; }
    std::uint64_t Count() const { return count_; }
    bool Contains(std::uint64_t point) const { return point - firstPoint_ < count_; }
    const LasPointFrame& Frame() const { return frame_; }

    /// The records, contiguous; writable only if the file was opened read-write.
    std::span<std::byte> Records() const { return records_; }
    /// Record of a point of this view; empty for any other.
    std::span<std::byte> Record(std::uint64_t point) const;
    /// X, Y, Z of a point of this view; the offset of the frame for any other.
    std::array<double, 3> Position(std::uint64_t point) const;

  private:
    MappedView view_;
    std::span<std::byte> records_;
    std::uint64_t firstPoint_;
    std::uint64_t count_;
    std::uint16_t recordLength_;
    LasPointFrame frame_;
};

/// Point records of an open file as views. A view starts at a multiple of Granularity() in the file and ends
/// with the last record that starts in it. Views are numbered from 0.
class LasPointViews {
  public:
    /// Takes ownership of the file. Null if there are no records to map: the record length is 0, or the
    /// points are compressed.
    static std::unique_ptr<LasPointViews> Create(MappedFile file, const LasHeader& header, bool readOnly);

    /// Four times the system's allocation granularity, in bytes.
    static std::uint64_t Granularity();

    /// Points of the header's count whose whole records lie inside the file.
    std::uint64_t PointCount() const { return pointCount_; }
    std::uint64_t ViewCount() const;
    /// View of a point below PointCount().
    std::uint64_t ViewOf(std::uint64_t point) const;
    /// Maps a view; it may be empty if records are longer than the granularity. Throws LDataError.
    LasPointView Map(std::uint64_t view) const;

  private:
    LasPointViews(MappedFile file, const LasHeader& header, bool readOnly);
    std::uint64_t FirstPointFrom(std::uint64_t position) const;

    MappedFile file_;
    LasPointFrame frame_;
    std::uint64_t start_;
    std::uint64_t pointCount_ = 0;
    std::uint16_t recordLength_;
    bool readOnly_;
};

}  // namespace orvex
