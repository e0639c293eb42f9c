#pragma once
#include <span>

#include "cloud/CloudRow.h"
#include "support/Column.h"

namespace orvex {

/// The columns of the cloud page.
std::span<const Column<CloudRow>> CloudColumns();

}  // namespace orvex
