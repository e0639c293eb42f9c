#pragma once
#include <array>
#include <cstdint>
#include <limits>
#include <vector>

#include "host/dem/DemScales.h"
#include "host/dem/LasWriter.h"

namespace orvex {

/// Which pixels a thinning keeps: one of n, lying as evenly over rows and columns as a lattice can.
class ThinningLattice {
  public:
    /// `step` is n; 0 counts as 1, and more than 65535 as that.
    explicit ThinningLattice(unsigned step);

    std::int64_t Step() const { return step_; }
    /// The first kept column of a row that is not before `column`; may lie behind the row's end.
    std::int64_t FirstColumn(std::int64_t row, std::int64_t column) const {
        const std::int64_t phase = (column + row * shift_) % step_;
        return phase == 0 ? column : column + step_ - phase;
    }
    /// At least so many pixels are kept of a raster; with a step of 1 exactly so many.
    std::uint64_t LeastOf(std::uint64_t width, std::uint64_t height) const {
        // Any `step` neighbours of a row hold one.
        return width / static_cast<std::uint64_t>(step_) * height;
    }

  private:
    std::int64_t step_;
    std::int64_t shift_;  ///< columns by which the kept ones move to the left from a row to the next
};

/// Turns heights into points at the centres of their pixels.
class DemEncoder {
  public:
    DemEncoder(const std::array<double, 6>& transform, const std::array<AxisScale, 3>& scales,
               const ThinningLattice& lattice);

    /// Adds the points of a part of the raster. After a height that the scale cannot hold nothing more is
    /// added, but the heights are looked at all the same.
    void Encode(const RasterWindow& window, const std::vector<double>& heights, LasPointWriter& writer);

    /// True when a height was met that the scale cannot hold.
    bool HasOverflown() const { return hasOverflown_; }
    /// The heights met; the low one is above the high one when there were none.
    double LowestHeight() const { return lowest_; }
    double HighestHeight() const { return highest_; }

  private:
    void EncodeRow(std::int64_t row, const RasterWindow& window, const double* heights,
                   LasPointWriter& writer);

    std::array<double, 6> steps_;  ///< the transform to whole numbers, from the first pixel's centre
    AxisScale heightScale_;
    ThinningLattice lattice_;
    double lowest_ = std::numeric_limits<double>::infinity();
    double highest_ = -std::numeric_limits<double>::infinity();
    bool hasOverflown_ = false;
};

}  // namespace orvex
