#pragma once
#include <filesystem>

namespace orvex {

/// True when the folder exists and this process may create files in it.
bool CanCreateFilesIn(const std::filesystem::path& folder);

}  // namespace orvex
