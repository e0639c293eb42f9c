#include <filesystem>

#include "support/Files.h"
#include "support/Text.h"

namespace orvex {

bool FileExists(const std::wstring& path) {
    std::error_code error;
    return std::filesystem::is_regular_file(ToPath(path), error);
}

bool FolderExists(const std::wstring& path) {
    std::error_code error;
    return std::filesystem::is_directory(ToPath(path), error);
}

}  // namespace orvex
