#pragma once
#include <array>

#include "host/dem/DemRaster.h"

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

}  // namespace orvex
