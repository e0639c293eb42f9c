#pragma once
// Rows as the raster page and the DEM page list them, without files.
#include <memory>
#include <string>

#include "orvexcommon/OrvexUtilities.h"
#include "raster/RasterRow.h"
#include "support/Text.h"

namespace orvex::testing {

/// ETRS89 / UTM zone 32N.
inline std::string ProjectedWkt() {
    return OrvexUtilities::CrsGetPrettyWktFromEPSG(25832);
}

inline std::string GeographicWkt() {
    return OrvexUtilities::CrsGetPrettyWktFromEPSG(4326);
}

/// A GeoTIFF of 600 x 400 pixels of half a unit, with three bands.
inline RasterRow DescribedRaster(const std::wstring& path, const std::string& wkt,
                                 const std::wstring& layer = {}) {
    RasterRow row;
    row.path = path;
    row.loadable = true;
    row.summary = L"OK";
    row.crs = DescribeCrs(wkt);
    row.unit = L"Meters";
    row.fileSize = 2'340'000;
    row.modifiedMs = 1'715'938'200'000;  // 2024-05-17 09:30
    row.place.layer = layer;
    row.file = std::make_unique<RasterFile>();
    row.file->path = path;
    RasterProperties& properties = row.file->properties;
    properties.width = 600;
    properties.height = 400;
    properties.pixelWidth = 0.5;
    properties.pixelHeight = 0.25;
    properties.wkt = wkt;
    properties.projectionCode = 25832;
    properties.colorModel = 2;
    properties.rasterKind = 2;
    properties.bands = 3;
    properties.bitsPerBand = 8;
    properties.overviews = 2;
    properties.extent = {{500000, 5700000, 500300, 5700100}};
    properties.hasDetails = true;
    properties.format = L"GeoTIFF";
    return row;
}

/// A file that could not be described.
inline RasterRow RefusedRaster(const std::wstring& path, const std::wstring& cause) {
    RasterRow row;
    row.path = path;
    row.summary = Text(text::kRasterCannotBeRead) + L" " + cause;
    row.findings = {{FindingSeverity::Error, row.summary}};
    row.crs = DescribeCrs({});
    row.fileSize = 10;
    return row;
}

}  // namespace orvex::testing
