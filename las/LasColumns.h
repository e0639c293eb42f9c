#pragma once
#include <span>

#include "las/LasRow.h"
#include "support/Column.h"

namespace orvex {

/// The columns of the LAS page, in their order. Hidden are "path" and "details", the address of the row's
/// LASFile as decimal text.
std::span<const Column<LasRow>> LasColumns();

}  // namespace orvex
