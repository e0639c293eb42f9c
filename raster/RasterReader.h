#pragma once
#include <string>

#include "orvexcommon/RasterProperties.h"

namespace orvex {

/// Reads what GDAL knows of a raster file, with one opening: never pixels, and nothing is written (no
/// statistics sidecar). `hasDetails` is set. Time and memory are bounded whatever the file claims. Throws
/// LDataError with the cause in plain words when the file cannot be described. Needs EnsureGdal. Safe from
/// any thread.
RasterProperties ReadRasterProperties(const std::wstring& path);

}  // namespace orvex
