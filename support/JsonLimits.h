#pragma once
// What a JSON text from elsewhere may hold, looked at before a parser sees it.
#include <cstddef>
#include <string_view>

namespace orvex {

inline constexpr std::size_t kMostJsonBytes = std::size_t{8} << 20U;
inline constexpr std::size_t kMostJsonDepth = 64;
inline constexpr std::size_t kMostJsonValues = 250'000;  ///< of some 300 bytes each in a parser's tree

enum class JsonExcess { None, Depth, Values };

/// Finds arrays and objects nested more than kMostJsonDepth deep, or more than kMostJsonValues values. Needs
/// no stack, and no valid JSON; the size is the caller's.
JsonExcess ExcessOf(std::string_view json);

}  // namespace orvex
