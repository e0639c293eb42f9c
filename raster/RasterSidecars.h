#pragma once
#include <gdal.h>

#include <string>

#include "orvexcommon/RasterProperties.h"

namespace orvex {

/// Fills the other files that belong to a raster, and adds their sizes to `totalBytes`. `path`: the file
/// itself, absolute; the dataset was opened through GdalAccess.
void ReadSidecars(GDALDatasetH dataset, const std::wstring& path, RasterProperties& properties);

}  // namespace orvex
