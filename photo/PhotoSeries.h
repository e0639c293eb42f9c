#pragma once
#include <vector>

#include "photo/PhotoRow.h"

namespace orvex {

/// Gives photos the findings that need their neighbours: identical positions or times, time running
/// backwards, a focal length or an image size that differs within a folder, heights that jump. Neighbours are
/// the photos of one folder in natural order of their names. Replaces what an earlier call found. O(n log n).
void ComparePhotos(std::vector<PhotoRow>& rows);

}  // namespace orvex
