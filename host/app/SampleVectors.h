#pragma once
#include <filesystem>

namespace orvex {

/// Writes feature files of the sample landscape into an existing folder: shapefiles of buildings, roads and
/// wells with fields and their CRS, a DXF drawing with layers, texts and a ".prj" file, and a KML file.
/// `west` and `south` are the corner of the sample area in the CRS of the EPSG code, in metres. Throws
/// LDataError when one cannot be written.
void WriteSampleVectors(const std::filesystem::path& folder, double west, double south, int epsg);

}  // namespace orvex
