#pragma once
#include <gdal.h>

#include "orvexcommon/RasterProperties.h"

namespace orvex {

/// Fills what is known of the bands: their number, the first one's bits and overviews, and the details of at
/// most kMostBandsDescribed. `onlyStated`: nothing is asked that would open other files.
void ReadBands(GDALDatasetH dataset, bool onlyStated, RasterProperties& properties);

}  // namespace orvex
