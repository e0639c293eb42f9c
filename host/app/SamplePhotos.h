#pragma once
#include <filesystem>

namespace orvex {

/// Writes photos of the landscape that an orthophoto shows, as taken by a camera above it: two strips with
/// full pose, one photo with a position only and one without. The orthophoto has a projected CRS in metres.
/// Throws if that fails.
void WriteSamplePhotos(const std::filesystem::path& folder, const std::filesystem::path& orthophoto);

}  // namespace orvex
