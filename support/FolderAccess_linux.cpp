#include <unistd.h>

#include "support/Files.h"
#include "support/FolderAccess.h"
#include "support/Text.h"

namespace orvex {

bool CanCreateFilesIn(const std::filesystem::path& folder) {
    // The system's answer counts read-only file systems and access lists, which permission bits do not show.
    return FolderExists(FromPath(folder)) && access(folder.c_str(), W_OK | X_OK) == 0;
}

}  // namespace orvex
