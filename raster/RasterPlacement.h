#pragma once
#include <gdal.h>

#include <string>

#include "orvexcommon/RasterProperties.h"

namespace orvex {

/// Fills where the image lies: transform, pixel size, extent, control points, coefficients, and its CRS with
/// code and unit. A transform that cannot be used is left out, with a warning.
void ReadPlacement(GDALDatasetH dataset, RasterProperties& properties);

}  // namespace orvex
