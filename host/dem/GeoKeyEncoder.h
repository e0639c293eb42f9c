#pragma once
#include <ogr_spatialref.h>

#include <optional>
#include <string>

namespace orvex {

/// Data of the GeoKey directory, doubles and text records.
struct GeoKeyPayloads {
    std::string directory;
    std::string doubles;  ///< may be empty
    std::string text;     ///< may be empty
};

/// The GeoTIFF keys that GDAL writes for a CRS; none when it writes none. Whether they say all that the CRS
/// does is not asked here. Call it inside a GdalErrorScope.
std::optional<GeoKeyPayloads> EncodeGeoKeys(const OGRSpatialReference& crs);

}  // namespace orvex
