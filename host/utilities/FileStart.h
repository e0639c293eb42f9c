#pragma once
#include <cstddef>
#include <string>

namespace orvex {

constexpr std::size_t kStartLength = 1024;

/// First bytes of a file, kStartLength at most. Throws LDataError if it is empty, missing or not a file that
/// can be read.
std::string ReadStart(const std::wstring& path);

}  // namespace orvex
