#pragma once
// Files by their names, however long: the standard library's own calls refuse long names on Windows.
#include <string>

namespace orvex {

/// True when the path names an existing regular file.
bool FileExists(const std::wstring& path);
/// True when the path names an existing folder.
bool FolderExists(const std::wstring& path);

}  // namespace orvex
