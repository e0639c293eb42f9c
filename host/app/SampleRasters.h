#pragma once
#include <filesystem>

namespace orvex {

/// Writes rasters of the sample landscape into a folder that exists: an orthophoto with overviews, a 16-bit
/// infrared image, a map with a palette and a world file, a rotated scan, a BigTIFF with transparency, one
/// without a CRS, one without a place and a truncated one. `west` and `south` are the corner of the sample
/// area in the CRS of the EPSG code, in metres. Throws LDataError when one cannot be written.
void WriteSampleRasters(const std::filesystem::path& folder, double west, double south, int epsg);

/// Writes elevation models of the sample landscape as WriteSampleRasters does: a grid of 32-bit floats with
/// gaps and a text grid, each with its CRS in a file beside it. Their extensions are those of elevation data.
void WriteSampleElevation(const std::filesystem::path& folder, double west, double south, int epsg);

}  // namespace orvex
