#pragma once
#include <filesystem>

namespace orvex {

/// A folder with sample data, made once: neighbouring tiles of terrain in LAS 1.2 and 1.4, with the CRS as
/// GeoKeys or as WKT, one in another CRS, one without, a compressed one, a truncated one and one that is no
/// LAS file. Returns the folder; empty when it cannot be made. It is built under another name and renamed
/// when complete, so that an interrupted run leaves nothing half made.
std::filesystem::path EnsureSampleProject(const std::filesystem::path& folder);

/// Where the data of a sample project lie.
inline std::filesystem::path SampleData(const std::filesystem::path& folder) {
    return folder / "data";
}

}  // namespace orvex
