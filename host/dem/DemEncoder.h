#pragma once
// Heights of a raster as scaled integer coordinates of points.
#include <array>
#include <cstdint>
#include <limits>
#include <vector>

#include "host/dem/DemRaster.h"
#include "host/dem/LasWriter.h"

namespace orvex {

/// Scaled integer coordinates of an axis: value = number * scale + offset.
struct AxisScale {
    double scale = 1;  ///< a power of ten
    double offset = 0;

    bool operator==(const AxisScale&) const = default;
};

/// Largest absolute value of a scaled coordinate.
inline constexpr double kMostAxisSteps = 2147483647;

/// Scale 10^`exponent` for an extent, or the next coarser one at which all of it fits into 32 bits, and as
/// the offset a round number near its middle. `low` and `high` are finite.
AxisScale FitAxis(double low, double high, int exponent);

/// Scale and offset of X and Y for the pixel centres of a raster: a millimetre, or 1e-8 degrees; finer for
/// small pixels, coarser where 32 bits require it.
std::array<AxisScale, 2> GroundScales(const DemRaster& raster);

/// Scale of heights before they are known: thousandths, offset 0.
AxisScale FirstHeightScale();

/// Scale for heights from `low` to `high`: thousandths; finer if they span less than one unit and
/// `hasFractions`, coarser where 32 bits require it.
AxisScale HeightScale(double low, double high, bool hasFractions);

/// Pixels kept by a thinning: one of n, on a lattice spread evenly over rows and columns.
class ThinningLattice {
  public:
    /// `step` is n, clamped to 1 to 65535.
    explicit ThinningLattice(unsigned step);

    std::int64_t Step() const { return step_; }
    /// First kept column of a row from `column` on; may lie beyond the end of the row.
    std::int64_t FirstColumn(std::int64_t row, std::int64_t column) const {
        const std::int64_t phase = (column + row * shift_) % step_;
        return phase == 0 ? column : column + step_ - phase;
    }
    /// Lower bound of the pixels kept of a raster; exact for a step of 1.
    std::uint64_t LeastOf(std::uint64_t width, std::uint64_t height) const {
        // Of any `step` neighbours in a row, one is kept.
        return width / static_cast<std::uint64_t>(step_) * height;
    }

  private:
    std::int64_t step_;
    std::int64_t shift_;  ///< columns by which the lattice moves to the left per row
};

/// Encodes heights as points at the centres of their pixels.
class DemEncoder {
  public:
    DemEncoder(const std::array<double, 6>& transform, const std::array<AxisScale, 3>& scales,
               const ThinningLattice& lattice);

    /// Adds the points of a window. Once a height does not fit the scale, no more points are added, but the
    /// range of heights is still tracked.
    void Encode(const RasterWindow& window, const std::vector<double>& heights, LasPointWriter& writer);

    /// True once a height did not fit the scale.
    bool HasOverflown() const { return hasOverflown_; }
    /// Range of the heights so far; the lowest is above the highest if there were none.
    double LowestHeight() const { return lowest_; }
    double HighestHeight() const { return highest_; }

  private:
    void EncodeRow(std::int64_t row, const RasterWindow& window, const double* heights,
                   LasPointWriter& writer);

    std::array<double, 6> steps_;  ///< transform to scaled integers, from the first pixel's centre
    AxisScale heightScale_;
    ThinningLattice lattice_;
    double lowest_ = std::numeric_limits<double>::infinity();
    double highest_ = -std::numeric_limits<double>::infinity();
    bool hasOverflown_ = false;
};

}  // namespace orvex
