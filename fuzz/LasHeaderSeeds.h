#pragma once
#include <string>
#include <vector>

namespace orvex::fuzz {

/// Files for the LAS reader to start from: every version and kind of record once, and the lies that once were
/// trouble somewhere.
std::vector<std::string> LasHeaderSeeds();

}  // namespace orvex::fuzz
