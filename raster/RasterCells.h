#pragma once
#include <string>

#include "raster/RasterColumns.h"
#include "raster/RasterRow.h"

namespace orvex {

/// What the row shows in a column of a page; nothing where the file says nothing.
GridCell RasterCell(const RasterRow& row, RasterColumn column, RasterUse use);

/// The same as text, as the grid shows it.
std::wstring RasterCellText(const RasterRow& row, RasterColumn column, RasterUse use);

/// Printf-like format of a number cell where it differs from the column's (degrees have more decimals); null
/// where it does not.
const wchar_t* RasterNumberFormat(const RasterRow& row, RasterColumn column);

}  // namespace orvex
