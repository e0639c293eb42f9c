#pragma once
#include <filesystem>
#include <memory>

#include "settings/RegistryKey.h"

namespace orvex {

/// A registry store over one SQLite file per root. A file that cannot be read answers as an empty key that
/// refuses writes, so base keys always open.
std::unique_ptr<RegistryStore> MakeSqliteRegistryStore(const std::filesystem::path& userFile,
                                                       const std::filesystem::path& machineFile);

}  // namespace orvex
