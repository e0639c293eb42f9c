#pragma once
#include <array>
#include <limits>
#include <vector>

#include "host/dem/AxisScale.h"
#include "host/dem/LasPointWriter.h"
#include "host/dem/RasterWindows.h"
#include "host/dem/ThinningLattice.h"

namespace orvex {

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
