#pragma once
#include <string>

namespace orvex {

class LASFile;

/// CRS from the projection records of a file.
struct LasCrs {
    std::string wkt;         ///< UTF-8; empty if there is no CRS or none that can be read
    bool isDamaged = false;  ///< the file has CRS records, but they cannot be read
};

/// Reads the CRS of a file: from the WKT record if the header's WKT bit is set or there are no GeoKeys, else
/// from the GeoKeys; if that gives none, from the other. Sets up GDAL if there are GeoKeys. Safe from any
/// thread; equal GeoKeys are converted once.
LasCrs ReadLasCrs(const LASFile& file);

}  // namespace orvex
