#pragma once
#include <ogr_spatialref.h>

#include <filesystem>
#include <string>

namespace orvex {

/// Exports a CRS in one of GDAL's formats ("WKT1_GDAL", "WKT2_2019", ...); empty if the format cannot express
/// it. The format is explicit because its default is an option of the whole process. Datum ensembles are
/// written as datums. Call it inside a GdalErrorScope.
std::string ExportWkt(const OGRSpatialReference& crs, const char* format, bool multiLine = false);

/// Adds `folder` to those where PROJ looks for its database and grids, for the whole process: behind the ones
/// that the host has set through GDAL, but before those of the system and the environment, whose database may
/// be another version's. Does nothing if the folder has no database. Safe from any thread.
void PreferProjData(const std::filesystem::path& folder);

}  // namespace orvex
