#pragma once
#include <string>
#include <vector>

namespace orvex::fuzz {

/// Complete input files for a fuzzer to start from. Each fuzzer defines its own.
std::vector<std::string> Seeds();

}  // namespace orvex::fuzz
