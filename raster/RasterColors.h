#pragma once
#include <gdal.h>

#include <string>

#include "orvexcommon/RasterProperties.h"

namespace orvex {

/// Fills the colour model and the photometric interpretation of a dataset whose bands are described.
void ReadColors(GDALDatasetH dataset, const std::wstring& path, RasterProperties& properties);

}  // namespace orvex
