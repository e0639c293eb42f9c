#pragma once
#include "las/LasColumns.h"
#include "las/LasRow.h"

namespace orvex {

/// What the row shows in a column; nothing where a file says nothing.
GridCell LasCell(const LasRow& row, LasColumn column);

/// The same as text, as the grid shows it.
std::wstring LasCellText(const LasRow& row, LasColumn column);

/// Printf-like format of a number cell where it differs from the column's (degrees have more decimals); null
/// where it does not.
const wchar_t* LasNumberFormat(const LasRow& row, LasColumn column);

}  // namespace orvex
