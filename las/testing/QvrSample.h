#pragma once
// Small QVR companions, built the plain way: cell by cell, level by level.
#include <cstdint>
#include <string>

#include "las/companion/QvrFormat.h"

namespace orvex::testing {

/// Companion of the bytes of an uncompressed LAS file without records, in random order. `time`: of the file's
/// last change, in nanoseconds since 1970; runs lie in octants of `depth`.
std::string QvrBytes(const std::string& las, std::int64_t time, std::uint16_t depth = 2);
/// The same with an index and entries of one's own.
std::string QvrBytes(const std::string& las, const QvrIndex& index, const std::vector<QvrEntry>& entries,
                     const std::string& points);

/// Writes the fresh companion of a LAS file beside it; its path.
std::wstring WriteQvrBeside(const std::wstring& lasPath);

}  // namespace orvex::testing
