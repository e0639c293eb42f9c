#pragma once
// Texts about the bands of one file.
#include <string>

#include "orvexcommon/RasterProperties.h"

namespace orvex {

/// A pixel value with the digits that it takes: "-9999", "0.1", "NaN".
std::wstring ValueText(double value);

/// What the bands say, each text once and in their order, separated by commas. A long list is cut.
std::wstring DistinctOfBands(const RasterProperties& properties, std::wstring RasterBandProperties::*text);

/// The same for the values that mean "no data"; says so when no band has one.
std::wstring DistinctNodata(const RasterProperties& properties);

/// The same for the sizes of blocks: "256 x 256".
std::wstring DistinctBlocks(const RasterProperties& properties);

/// Over the bands that state one; empty when none does.
std::wstring LowestMinimum(const RasterProperties& properties);
std::wstring HighestMaximum(const RasterProperties& properties);

}  // namespace orvex
