#pragma once
#include <cstdint>

namespace orvex {

/// The made-up landscape of the sample data at one place.
struct SampleTerrain {
    double height;  ///< metres, with the tree
    bool isTree;
    bool isWater;
};

/// The landscape at whole metres from the sample area's corner; the same whenever it is asked.
SampleTerrain SampleTerrainAt(std::int64_t x, std::int64_t y);

/// The same number between 0 and 1 for the same place, whatever made it.
double SampleNoise(std::int64_t x, std::int64_t y);

}  // namespace orvex
