#pragma once
#include <span>
#include <string>
#include <string_view>

namespace orvex {

/// A text such that comparing two of them character by character gives the order in which a person lists the
/// originals: without regard to letter case, runs of digits by their value ("tile9" before "Tile10"; leading
/// zeros mean nothing), a folder's own files beside each other.
std::wstring NaturalKey(std::wstring_view text);

/// The order of NaturalKey; texts with equal keys are ordered by their characters, so that the order is
/// total.
bool NaturalLess(std::wstring_view a, std::wstring_view b);

/// Sorts by NaturalLess.
void SortNaturally(std::span<std::wstring> texts);

}  // namespace orvex
