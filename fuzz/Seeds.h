#pragma once
#include <string>
#include <vector>

namespace orvex::fuzz {

/// Whole files for a fuzzer to start from. Each fuzzer has its own; they are built into its programs.
std::vector<std::string> Seeds();

}  // namespace orvex::fuzz
