#pragma once
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string_view>

namespace orvex {

inline constexpr std::int32_t kMinimumThinning = 2;
inline constexpr std::int32_t kMaximumThinning = 256;

/// The thinning factor in a text: its first `most` characters (at most 18), read as a leading integer. None
/// when it is below 2 or no number; more than 256 gives 256.
std::optional<std::int32_t> ParseThinning(std::wstring_view text, std::size_t most);

}  // namespace orvex
