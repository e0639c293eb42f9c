#pragma once
#include <span>

#include "raster/RasterRow.h"
#include "support/Column.h"

namespace orvex {

/// The columns of the raster page or of the DEM page, in their order. Hidden are "path" and "details", the
/// address of the row's RasterFile as decimal text.
std::span<const Column<RasterRow>> RasterColumns(RasterUse use);

}  // namespace orvex
