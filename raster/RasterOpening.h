#pragma once
#include <string>
#include <vector>

#include "crs/GdalDataset.h"

namespace orvex {

/// Opens a raster file read-only with the drivers that are for files in a list: no servers, no databases,
/// nothing that reads the file to its end before it says what is in it, nothing that leaves files beside it.
/// Null when GDAL cannot open it; what it says goes to the error scope around. Throws LDataError when the
/// path names no file that can be read, or the file is one that is not to be opened.
GdalDataset OpenRaster(const std::wstring& path);

/// Why it is null, in plain words, from what GDAL said meanwhile; empty when nothing is known.
std::wstring WhyNotOpened(const std::wstring& path, const std::vector<std::string>& messages);

/// Whether the dataset is put together from other files, so that asking for more than it states itself opens
/// those, wherever they are.
bool IsPutTogether(GDALDatasetH dataset);

}  // namespace orvex
