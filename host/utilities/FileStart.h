#pragma once
#include <cstddef>
#include <cstdint>
#include <string>

namespace orvex {

constexpr std::size_t kStartLength = 1024;

/// Up to `length` bytes from an offset; fewer at the end of the file. Throws LDataError if it is missing or
/// not a file that can be read.
std::string ReadPart(const std::wstring& path, std::uint64_t offset, std::size_t length);

/// First bytes of a file, kStartLength at most. Throws LDataError if it is empty, missing or not a file that
/// can be read.
std::string ReadStart(const std::wstring& path);

}  // namespace orvex
