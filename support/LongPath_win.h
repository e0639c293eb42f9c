#pragma once
#include <filesystem>
#include <string>

namespace orvex {

/// The absolute path without "." and "..", which the prefix of long paths would take literally; a matter of
/// text only. What has none, such as an empty path, is returned as it is.
std::wstring AbsolutePath(const std::wstring& path);

/// An absolute path with the prefix "\\?\" (or "\\?\UNC\"), which lifts the system's limit of 260 characters.
/// One that has a prefix is returned as it is.
std::filesystem::path PrefixedPath(const std::wstring& absolute);

}  // namespace orvex
