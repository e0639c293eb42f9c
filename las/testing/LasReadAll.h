#pragma once
#include <string>

namespace orvex::testing {

/// Opens a file with its points and reads everything that can be said about it, in one text: its records, its
/// findings, its attributes and its last point. A file that cannot be opened gives the text of the failure.
/// Any other exception passes. What a test of odd files and a fuzzer do with each of their inputs.
std::wstring ReadAllOfLas(const std::wstring& path, bool readOnly);

}  // namespace orvex::testing
