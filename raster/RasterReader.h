#pragma once
#include <string>

#include "orvexcommon/RasterProperties.h"
#include "support/GdalErrorScope.h"
#include "support/GdalRaii.h"

namespace orvex {

/// Opens a raster file read-only with the drivers of RasterDrivers(). Never null. `errors`: the innermost
/// scope of this thread. Throws LDataError with the cause when the path names no readable file, GDAL cannot
/// open the file, or opening it would open other files; the text is empty when GDAL states no cause.
GdalDataset OpenRaster(const std::wstring& path, const GdalErrorScope& errors);

/// Reads the properties of a raster file, `hasDetails` set, with a single opening. Reads no pixels and writes
/// nothing, not even a statistics sidecar. Time and memory are bounded whatever the file claims. Throws
/// LDataError like OpenRaster, and for a file without an image. Needs EnsureGdal. Safe from any thread.
RasterProperties ReadRasterProperties(const std::wstring& path);

}  // namespace orvex
