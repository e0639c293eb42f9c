#pragma once
#include <filesystem>

namespace orvex {

/// Writes the folder of a cloud account: listings of several projects, one of them kept out of browsers by
/// its name, and copies of the LAS and LAZ files of a sample project's data folder. `epsg`: CRS of its
/// surveys. Throws if a file cannot be written.
void WriteSampleAccount(const std::filesystem::path& folder, const std::filesystem::path& data, int epsg);

}  // namespace orvex
