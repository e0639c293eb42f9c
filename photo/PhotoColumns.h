#pragma once
#include <span>

#include "photo/PhotoRow.h"
#include "support/Column.h"

namespace orvex {

/// The 56 columns of the photo page, in their order.
std::span<const Column<PhotoRow>> PhotoColumns();

}  // namespace orvex
