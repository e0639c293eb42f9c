#pragma once
#include <memory>
#include <string>

#include "raster/RasterFile.h"

namespace orvex {

/// What the raster page and the DEM page have read of one file.
struct ListedRaster {
    std::wstring path;
    std::wstring summary;                          ///< one line, as the summary cell shows it
    std::shared_ptr<const RasterInspection> file;  ///< null only before it is read
    /// What the host gets; null for a file that could not be described, and when the host owns it.
    std::unique_ptr<RasterFile> details;
};

ListedRaster ListRaster(RasterInspection inspection);

/// The listing of a file whose reading threw.
ListedRaster FailedRaster(const std::wstring& path, const std::wstring& message);

}  // namespace orvex
