#pragma once
#include <cstdint>
#include <string>
#include <utility>
#include <vector>

namespace orvex::testing {

/// The coded part of a table of chunks of varying size, as the codec reads it. Chunks are given by their
/// points and bytes.
std::string EncodeLazTable(const std::vector<std::pair<std::uint32_t, std::uint32_t>>& chunks);

}  // namespace orvex::testing
