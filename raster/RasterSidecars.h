#pragma once
#include <gdal.h>

#include <string>

#include "orvexcommon/RasterProperties.h"

namespace orvex {

/// Fills the files that belong to a raster, and adds their sizes to `totalBytes`.
void ReadSidecars(GDALDatasetH dataset, const std::wstring& path, RasterProperties& properties);

}  // namespace orvex
