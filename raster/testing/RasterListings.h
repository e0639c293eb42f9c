#pragma once
// Rows as the raster page and the DEM page list them, without files.
#include <string>

#include "raster/RasterRow.h"
#include "support/Text.h"

namespace orvex::testing {

/// UTM zone 32, in metres.
inline std::string ProjectedWkt() {
    return R"(PROJCS["ETRS89 / UTM zone 32N",GEOGCS["ETRS89",DATUM["European_Terrestrial_Reference_System_1989",)"
           R"(SPHEROID["GRS 1980",6378137,298.257222101]],PRIMEM["Greenwich",0],)"
           R"(UNIT["degree",0.0174532925199433]],PROJECTION["Transverse_Mercator"],)"
           R"(PARAMETER["latitude_of_origin",0],PARAMETER["central_meridian",9],PARAMETER["scale_factor",0.9996],)"
           R"(PARAMETER["false_easting",500000],PARAMETER["false_northing",0],UNIT["metre",1],)"
           R"(AUTHORITY["EPSG","25832"]])";
}

inline std::string GeographicWkt() {
    return R"(GEOGCS["WGS 84",DATUM["WGS_1984",SPHEROID["WGS 84",6378137,298.257223563]],)"
           R"(PRIMEM["Greenwich",0],UNIT["degree",0.0174532925199433],AUTHORITY["EPSG","4326"]])";
}

/// A GeoTIFF of 600 x 400 pixels of half a unit, with three bands.
inline RasterInspection DescribedRaster(const std::wstring& path, const std::string& wkt) {
    RasterInspection file;
    file.path = path;
    file.loadable = true;
    file.summary = L"OK";
    file.crs = DescribeCrs(wkt);
    file.unit = L"Meters";
    file.fileSize = 2'340'000;
    file.modifiedMs = 1'715'938'200'000;  // 2024-05-17 09:30
    RasterProperties& properties = file.properties;
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
    return file;
}

/// A file that could not be described.
inline RasterInspection RefusedRaster(const std::wstring& path, const std::wstring& cause) {
    RasterInspection file;
    file.path = path;
    file.summary = Text(text::kRasterCannotBeRead) + L" " + cause;
    file.findings = {{FindingSeverity::Error, file.summary}};
    file.crs = DescribeCrs({});
    file.fileSize = 10;
    return file;
}

inline RasterRow ListedRow(RasterInspection inspection, const std::wstring& layer = {}) {
    RasterRow row;
    row.inspection = ListRaster(std::move(inspection));
    row.place.layer = layer;
    return row;
}

}  // namespace orvex::testing
