#pragma once
#include <array>

#include "host/dem/DemRaster.h"

namespace orvex {

/// How the coordinates of an axis become whole numbers: value = number * scale + offset.
struct AxisScale {
    double scale = 1;  ///< a power of ten
    double offset = 0;

    bool operator==(const AxisScale&) const = default;
};

/// The largest number that a coordinate may become, whatever its sign.
inline constexpr double kMostAxisSteps = 2147483647;

/// The scale 10^`exponent` for an extent, or the next coarser one with which all of it fits into 32 bits; the
/// offset is a round number near its middle. `low` and `high` are finite.
AxisScale FitAxis(double low, double high, int exponent);

/// Scale and offset of X and Y for the pixel centres of a raster: a millimetre of ground, 1e-8 of a degree,
/// or finer where the pixels are small; coarser where 32 bits demand it.
std::array<AxisScale, 2> GroundScales(const DemRaster& raster);

/// The scale of heights that are not known yet: thousandths, from zero.
AxisScale FirstHeightScale();

/// The scale for heights from `low` to `high`: thousandths; finer where all of them lie within one unit and
/// `hasFractions`; coarser where 32 bits demand it.
AxisScale HeightScale(double low, double high, bool hasFractions);

}  // namespace orvex
