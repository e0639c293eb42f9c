#include <unistd.h>

#include "support/FolderAccess.h"

namespace orvex {

bool CanCreateFilesIn(const std::filesystem::path& folder) {
    std::error_code error;
    // The system's answer counts read-only file systems and access lists, which permission bits do not show.
    return std::filesystem::is_directory(folder, error) && access(folder.c_str(), W_OK | X_OK) == 0;
}

}  // namespace orvex
