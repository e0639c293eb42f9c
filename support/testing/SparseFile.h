#pragma once
#include <cstdint>
#include <string>

namespace orvex::testing {

/// Makes an existing file longer without using the drive for what is added; throws where the drive cannot.
void GrowSparse(const std::wstring& path, std::uint64_t size);

/// Writes bytes at a place of an existing file.
void WriteAt(const std::wstring& path, std::uint64_t offset, const std::string& bytes);

}  // namespace orvex::testing
