#pragma once
#include <span>
#include <string>
#include <string_view>

namespace orvex {

/// Sort key for natural order ("tile9" before "Tile10"): case-insensitive, digit runs compare by value
/// (leading zeros do not count), and the files of one folder stay together.
std::wstring NaturalKey(std::wstring_view text);

/// Compares by NaturalKey, texts with equal keys by their characters, so that the order is total.
bool NaturalLess(std::wstring_view a, std::wstring_view b);

/// Sorts by NaturalLess.
void SortNaturally(std::span<std::wstring> texts);

}  // namespace orvex
