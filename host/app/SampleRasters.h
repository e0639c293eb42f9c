#pragma once
#include <filesystem>

namespace orvex {

/// Writes rasters of the sample landscape into a folder that exists: an orthophoto with overviews, a 16-bit
/// infrared image, a map with a palette and a world file, a rotated scan, a BigTIFF with transparency, one
/// without a CRS, one without a place and a truncated one. `west` and `south` are the corner of the sample
/// area in the CRS of the EPSG code, in metres. Throws LDataError when one cannot be written.
void WriteSampleRasters(const std::filesystem::path& folder, double west, double south, int epsg);

/// Writes elevation models of the sample landscape: a GeoTIFF of 32-bit floats with holes, and a text grid
/// whose CRS lies beside it. As WriteSampleRasters.
void WriteSampleElevation(const std::filesystem::path& folder, double west, double south, int epsg);

}  // namespace orvex
