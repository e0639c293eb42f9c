#include <windows.h>

#include "support/Files.h"
#include "support/Text.h"

namespace orvex {
namespace {

DWORD AttributesOf(const std::wstring& path) {
    return GetFileAttributesW(ToPath(path).c_str());
}

}  // namespace

bool FileExists(const std::wstring& path) {
    const DWORD attributes = AttributesOf(path);
    return attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_DIRECTORY) == 0;
}

bool FolderExists(const std::wstring& path) {
    const DWORD attributes = AttributesOf(path);
    return attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_DIRECTORY) != 0;
}

}  // namespace orvex
