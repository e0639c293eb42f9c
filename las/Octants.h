#pragma once
#include <array>

namespace orvex {

/// A box in X, Y, Z.
struct LasExtent {
    std::array<double, 3> minimum{};
    std::array<double, 3> maximum{};
    friend bool operator==(const LasExtent&, const LasExtent&) = default;
};

/// One eighth of an extent, cut at the mid-points. `child` is 0 to 7: bit value 4 takes the upper half in X,
/// 2 in Y, 1 in Z; a clear bit takes the lower half. Higher bits mean nothing.
LasExtent Octant(const LasExtent& extent, unsigned child);

}  // namespace orvex
