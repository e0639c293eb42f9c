#pragma once
// The point data of a file in pieces that are mapped when asked for.
#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>

#include "las/LasHeader.h"
#include "las/Octants.h"
#include "support/MappedFile.h"

namespace orvex {

/// How the coordinates of point records are to be read, from the header.
struct LasPointFrame {
    std::array<double, 3> scale{};
    std::array<double, 3> offset{};
    LasExtent extent;
};

/// Whole point records in memory. Points are numbered from 0 over the file. Move-only.
class LasPointView {
  public:
    LasPointView(MappedView view, std::uint64_t skip, std::uint64_t firstPoint, std::uint64_t count,
                 std::uint16_t recordLength, const LasPointFrame& frame);

    std::uint64_t FirstPoint() const { return firstPoint_; }
    std::uint64_t Count() const { return count_; }
    bool Contains(std::uint64_t point) const { return point - firstPoint_ < count_; }
    const LasPointFrame& Frame() const { return frame_; }

    /// The records one after the other; to be written to only when the file was opened read-write.
    std::span<std::byte> Records() const { return records_; }
    /// The record of a point of this view; empty for any other.
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

/// The point records of an open file as views: each begins at a multiple of Granularity() in the file and is
/// widened so that it ends with the last record that begins in it. Views are numbered from 0.
class LasPointViews {
  public:
    /// Takes the file over. Null when there are no records to map: the record length is 0, or the points are
    /// compressed.
    static std::unique_ptr<LasPointViews> Create(MappedFile file, const LasHeader& header, bool readOnly);

    /// Four times what the system wants views to begin at, in bytes.
    static std::uint64_t Granularity();

    /// Points of the header's count that lie inside the file as whole records.
    std::uint64_t PointCount() const { return pointCount_; }
    std::uint64_t ViewCount() const;
    /// The view that holds a point below PointCount().
    std::uint64_t ViewOf(std::uint64_t point) const;
    /// Maps a view; one of a file with records longer than the granularity may hold none. Throws LDataError.
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
