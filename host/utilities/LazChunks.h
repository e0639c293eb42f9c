#pragma once
#include <cstdint>
#include <string>
#include <vector>

#include "host/utilities/LazLayout.h"

namespace orvex {

/// Points that are compressed for themselves.
struct LazChunk {
    std::uint64_t first = 0;  ///< number of its first point
    std::uint64_t count = 0;
    std::uint64_t end = 0;  ///< place in the file behind it
};

/// Reads the table of chunks of a file with `points` points. Empty if the file has none or if the table
/// contradicts itself, the file or the number of points: only reading from the start shows what can be read.
std::vector<LazChunk> ReadLazChunks(const std::wstring& path, const LazChunkTable& table,
                                    std::uint64_t points);

}  // namespace orvex
