#pragma once
#include <string>
#include <vector>

#include "raster/RasterRow.h"
#include "support/Text.h"

namespace orvex {

/// A table: a caption per column, and as many cells in each row.
struct DetailTable {
    std::vector<StringId> captions;
    std::vector<std::vector<std::wstring>> rows;
};

/// The bands of one file; columns of which no band says anything are left out.
DetailTable RasterBands(const RasterRow& row);

/// How many bands of a file RasterBands does not list.
std::size_t UnlistedBands(const RasterRow& row);

}  // namespace orvex
