#pragma once
#include <span>

#include "feature/FeatureRow.h"
#include "support/Column.h"

namespace orvex {

/// The columns of the feature page, in their order. Hidden is "path".
std::span<const Column<FeatureRow>> FeatureColumns();

}  // namespace orvex
