#pragma once
#include <vector>

#include "dialog/details/DetailSection.h"
#include "raster/RasterRow.h"

namespace orvex {

/// Details of one file, in sections; none for one that could not be described.
std::vector<DetailSection> RasterSections(const RasterRow& row, RasterUse use);

/// The coordinate reference system of one file; no fields when it carries none.
std::vector<DetailField> RasterCrsFields(const RasterRow& row);

}  // namespace orvex
