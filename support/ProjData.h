#pragma once
#include <filesystem>

namespace orvex {

/// PROJ, for the whole process, looks for its database and grids in `folder` first, then where it did before.
/// Nothing changes when no database lies there. From any thread.
void PreferProjData(const std::filesystem::path& folder);

}  // namespace orvex
