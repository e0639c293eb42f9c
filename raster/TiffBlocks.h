#pragma once
#include <gdal.h>

#include <cstdint>
#include <string>

namespace orvex {

/// Whether the strips or tiles that a TIFF lists, those of its reduced-resolution levels among them, lie
/// within the file, as far as a few of them tell (they are seldom cut off alone). A text for the user when
/// not, else empty. Reads no pixels.
std::wstring CheckTiffBlocks(GDALDatasetH dataset, std::uint64_t fileSize);

}  // namespace orvex
