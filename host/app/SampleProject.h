#pragma once
#include <filesystem>

namespace orvex {

/// Creates a folder with sample data unless it exists: neighbouring LAS 1.2 and 1.4 tiles with the CRS as
/// GeoKeys or WKT, one in another CRS, one without, a compressed one, a truncated one and one that is no LAS
/// file; rasters, elevation models, feature files and photos of the same landscape. Each part is built under
/// a temporary name and renamed when complete. Returns the folder; empty if it cannot be created.
std::filesystem::path EnsureSampleProject(const std::filesystem::path& folder);

/// Creates a sample project's surveys, and beside its data the folder of a cloud account with some of them,
/// unless they exist. Returns the account's folder; empty if it cannot be created.
std::filesystem::path EnsureSampleAccount(const std::filesystem::path& folder);

/// Data folder of a sample project.
inline std::filesystem::path SampleData(const std::filesystem::path& folder) {
    return folder / "data";
}

}  // namespace orvex
