#pragma once
#include <gdal.h>

#include <cstdint>
#include <string>

#include "orvexcommon/Shared.h"

namespace orvex {

/// What GDAL derives from the GeoKeys of a GeoTIFF file. That takes several times as long as all else that is
/// read of the file, while the files of a folder share a few sets of keys.
struct GeoKeyFacts {
    std::wstring pixelIs;
    std::wstring verticalUnit;  ///< of bands that state no unit
    Shared<std::string> wkt;
    std::wstring linearUnit;
    std::int32_t projectionCode = 0;
};

/// The GeoKeys of an open GeoTIFF file, as a text that is equal for equal keys. Empty for other formats, and
/// where GDAL may not go by the keys alone: control points, files beside it, bands that state their units,
/// keys that leave out the type of the raster or are not as they should be.
std::string ReadGeoKeys(GDALDatasetH dataset, const std::wstring& path);

/// Takes what is known of such keys; false if nothing is. Safe from any thread.
bool FindGeoKeyFacts(const std::string& keys, GeoKeyFacts& facts);
/// Keeps what was found out without any message from GDAL.
void KeepGeoKeyFacts(const std::string& keys, const GeoKeyFacts& facts);

}  // namespace orvex
