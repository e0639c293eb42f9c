#pragma once
// Facts of a TIFF that GDAL's dataset model does not give.
#include <gdal.h>

#include <cstdint>
#include <optional>
#include <string>

namespace orvex {

/// Checks that the strips or tiles of a TIFF, those of its internal overviews included, lie within the file.
/// A sample of them, since truncation seldom loses only one. Returns the fault as a text for the user; empty
/// if there is none, or the dataset is no TIFF. Reads no pixels.
std::wstring CheckTiffBlocks(GDALDatasetH dataset, std::uint64_t fileSize);

/// The tag PhotometricInterpretation (262) of the first directory of a TIFF or BigTIFF in either byte order;
/// nullopt if the file is no TIFF or has no such tag.
std::optional<int> ReadTiffPhotometric(const std::wstring& path);

}  // namespace orvex
