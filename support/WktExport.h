#pragma once
#include <ogr_spatialref.h>

#include <string>

namespace orvex {

/// The CRS in a format of GDAL's ("WKT1_GDAL", "WKT2_2019", ...); empty when it cannot be expressed in it.
/// The format is always named, because the option that sets it is the process's. Call it inside a
/// GdalErrorScope.
std::string ExportWkt(const OGRSpatialReference& crs, const char* format, bool multiLine = false);

}  // namespace orvex
