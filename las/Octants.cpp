#include "las/Octants.h"

#include <cstddef>
#include <numeric>

namespace orvex {

LasExtent Octant(const LasExtent& extent, unsigned child) {
    constexpr std::array<unsigned, 3> kUpperBits{4, 2, 1};
    LasExtent part = extent;
    for (std::size_t axis = 0; axis < kUpperBits.size(); ++axis) {
        const double middle = std::midpoint(extent.minimum[axis], extent.maximum[axis]);
        auto& side = (child & kUpperBits[axis]) != 0 ? part.minimum : part.maximum;
        side[axis] = middle;
    }
    return part;
}

}  // namespace orvex
