#pragma once
// Texts about the bands of one raster file.
#include <string>
#include <vector>

#include "dialog/details/DetailSection.h"
#include "orvexcommon/RasterProperties.h"

namespace orvex {

/// The bands that are described, one a row; columns in which every band is empty are left out.
DetailTable BandTable(const RasterProperties& properties);

/// Number of bands that BandTable does not list.
std::size_t UnlistedBands(const RasterProperties& properties);

/// The distinct texts of the bands, in their order, separated by commas. A long list is cut.
std::wstring DistinctOfBands(const RasterProperties& properties, std::wstring RasterBandProperties::*text);

/// The same for no-data values; "none" when no band has one.
std::wstring DistinctNodata(const RasterProperties& properties);

/// The same for block sizes: "256 x 256".
std::wstring DistinctBlocks(const RasterProperties& properties);

/// Over the bands that state one; empty when none does.
std::wstring LowestMinimum(const RasterProperties& properties);
std::wstring HighestMaximum(const RasterProperties& properties);

}  // namespace orvex
