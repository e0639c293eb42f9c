#pragma once
#include <memory>
#include <string>

#include "raster/RasterFile.h"
#include "support/HostObjects.h"

namespace orvex {

/// What the raster page and the DEM page have read of one file.
struct ListedRaster {
    std::wstring path;
    std::wstring summary;                          ///< one line, as the summary cell shows it
    std::shared_ptr<const RasterInspection> file;  ///< null only before it is read
    /// What the host gets; null for a file that could not be described, and when the host owns it.
    std::unique_ptr<RasterFile> details;
    bool threw = false;  ///< reading ended with an exception, which the user is to be told of
};

ListedRaster ListRaster(RasterInspection inspection);

/// Reads one file with objects that `maker` makes; see InspectRasterFile. An exception of such an object
/// leaves what the component reads itself.
ListedRaster ReadListedRaster(const std::wstring& path, RasterUse use, const RasterInformationMaker& maker);

/// The listing of a file whose reading threw.
ListedRaster FailedRaster(const std::wstring& path, const std::wstring& message);

}  // namespace orvex
