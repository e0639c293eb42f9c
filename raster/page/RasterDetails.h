#pragma once
// What the details pane of the raster page and of the DEM page says, without a widget.
#include <vector>

#include "dialog/details/DetailSection.h"
#include "raster/RasterColumns.h"
#include "raster/RasterRow.h"

namespace orvex {

/// One file, in sections; none for one that could not be described.
std::vector<DetailSection> RasterOverview(const RasterRow& row, RasterUse use);

/// The coordinate reference system of one file; no fields when it carries none.
std::vector<DetailField> RasterCrsFields(const RasterRow& row);

}  // namespace orvex
