#pragma once
#include <vector>

#include "photo/PhotoRow.h"

namespace orvex {

/// Findings about a photo whose metadata was read that need no other photo, worst first.
std::vector<Finding> ValidatePhoto(const PhotoRow& row);

}  // namespace orvex
