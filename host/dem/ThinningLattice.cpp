#include "host/dem/ThinningLattice.h"

#include <algorithm>

namespace orvex {
namespace {

constexpr unsigned kMostStep = 65535;

/// Squared distance of a kept pixel to the nearest other one.
std::int64_t SquaredSpacing(std::int64_t step, std::int64_t shift) {
    std::int64_t nearest = step * step;
    for (std::int64_t row = 1; row * row < nearest; ++row) {
        const std::int64_t ahead = row * shift % step;
        const std::int64_t aside = std::min(ahead, step - ahead);
        nearest = std::min(nearest, aside * aside + row * row);
    }
    return nearest;
}

std::int64_t MostEvenShift(std::int64_t step) {
    std::int64_t best = 0;
    std::int64_t spacing = 0;
    for (std::int64_t shift = 0; shift <= step / 2; ++shift) {
        const std::int64_t reached = SquaredSpacing(step, shift);
        if (reached > spacing) {
            spacing = reached;
            best = shift;
        }
    }
    return best;
}

}  // namespace

ThinningLattice::ThinningLattice(unsigned step)
    : step_(std::clamp(step, 1U, kMostStep)), shift_(MostEvenShift(step_)) {}

}  // namespace orvex
