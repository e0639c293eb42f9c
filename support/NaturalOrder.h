#pragma once
#include <span>
#include <string>
#include <string_view>

namespace orvex {

/// Order of file paths as a person lists them: without regard to letter case, runs of digits by their value
/// ("tile2" before "tile10"), a folder's own files beside each other. Texts that are equal so far are ordered
/// by their characters, so that the order is total.
bool NaturalLess(std::wstring_view a, std::wstring_view b);

/// Sorts by NaturalLess.
void SortNaturally(std::span<std::wstring> texts);

}  // namespace orvex
