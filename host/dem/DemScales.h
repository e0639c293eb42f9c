#pragma once
#include <ogr_spatialref.h>

#include <array>

#include "host/dem/AxisScale.h"
#include "host/dem/DemRaster.h"

namespace orvex {

/// Scale and offset of X and Y for the pixel centres of a raster: a millimetre of ground, 1e-8 of a degree,
/// or finer where the pixels are small; coarser where 32 bits demand it.
std::array<AxisScale, 2> GroundScales(const DemRaster& raster);

/// The scale of heights that are not known yet: thousandths, from zero.
AxisScale FirstHeightScale();

/// The scale for heights from `low` to `high`: thousandths; finer where all of them lie within one unit and
/// `hasFractions`; coarser where 32 bits demand it.
AxisScale HeightScale(double low, double high, bool hasFractions);

}  // namespace orvex
