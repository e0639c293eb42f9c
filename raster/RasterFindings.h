#pragma once
#include <vector>

#include "raster/RasterInspection.h"

namespace orvex {

/// Everything that is odd about a raster that could be read, worst first; what was said while opening it
/// comes before what follows from its properties.
std::vector<Finding> FindRasterOddities(const RasterInspection& inspection, RasterUse use);

}  // namespace orvex
