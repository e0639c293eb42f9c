#include "host/app/SampleTerrain.h"

#include <cmath>

namespace orvex {

double SampleNoise(std::int64_t x, std::int64_t y) {
    auto bits = static_cast<std::uint64_t>(x) * 0x9E3779B97F4A7C15ULL ^
                static_cast<std::uint64_t>(y) * 0xC2B2AE3D27D4EB4FULL;
    bits ^= bits >> 29U;
    bits *= 0xBF58476D1CE4E5B9ULL;
    bits ^= bits >> 32U;
    return static_cast<double>(bits % 65536) / 65535.0;
}

SampleTerrain SampleTerrainAt(std::int64_t x, std::int64_t y) {
    const double fx = static_cast<double>(x);
    const double fy = static_cast<double>(y);
    const double hills = 40 * std::sin(fx / 131) * std::cos(fy / 97) + 18 * std::sin(fx / 53 + fy / 71);
    const double river = std::abs(fy - 210 - 60 * std::sin(fx / 120));
    const bool isWater = river < 12;
    const bool isTree = !isWater && std::sin(fx / 17) + std::sin(fy / 23) > 0.7 && SampleNoise(x, y) > 0.5;
    const double ground = isWater ? 212 : 250 + hills + 0.3 * SampleNoise(y, x) - 40 / (1 + river / 20);
    return {ground + (isTree ? 4 + 12 * SampleNoise(x + 7, y) : 0), isTree, isWater};
}

}  // namespace orvex
