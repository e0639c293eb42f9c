#pragma once
#include <string>

namespace orvex {

class LASFile;

/// What the projection records of a file say.
struct LasCrs {
    std::string wkt;         ///< UTF-8; empty when there is no CRS or none that can be read
    bool isDamaged = false;  ///< there are records that should say a CRS, but nothing can be made of them
};

/// The CRS of a file. The WKT record holds it when the header's WKT bit is set or there are no GeoKeys, else
/// the GeoKeys do; where the one that should hold it says nothing, the other is asked. Sets GDAL up when
/// there are GeoKeys. Safe from any thread; equal GeoKeys are converted once.
LasCrs ReadLasCrs(const LASFile& file);

}  // namespace orvex
