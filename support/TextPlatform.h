#pragma once
// What differs between the platforms in the names of files; used by Text.cpp only.
#include <cstddef>
#include <string_view>

namespace orvex {

bool IsSeparator(wchar_t c);

/// The length of the part of a path that no file name begins in, with its separator: "/", "C:\",
/// "\\server\share\"; 0 for a relative path.
std::size_t RootLength(std::wstring_view path);

}  // namespace orvex
