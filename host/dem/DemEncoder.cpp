#include "host/dem/DemEncoder.h"

#include <algorithm>
#include <cmath>

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

/// The nearest whole number of one that fits into 32 bits.
std::int32_t Nearest(double steps) {
    return static_cast<std::int32_t>(steps + std::copysign(0.5, steps));
}

}  // namespace

ThinningLattice::ThinningLattice(unsigned step)
    : step_(std::clamp(step, 1U, kMostStep)), shift_(MostEvenShift(step_)) {}

DemEncoder::DemEncoder(const std::array<double, 6>& transform, const std::array<AxisScale, 3>& scales,
                       const ThinningLattice& lattice)
    : steps_(transform), heightScale_(scales[2]), lattice_(lattice) {
    for (std::size_t axis = 0; axis < 2; ++axis) {
        double* const terms = steps_.data() + axis * 3;
        terms[0] = (terms[0] + (terms[1] + terms[2]) / 2 - scales[axis].offset) / scales[axis].scale;
        terms[1] /= scales[axis].scale;
        terms[2] /= scales[axis].scale;
    }
}

void DemEncoder::Encode(const RasterWindow& window, const std::vector<double>& heights,
                        LasPointWriter& writer) {
    const auto width = static_cast<std::size_t>(window.width);
    for (int row = 0; row < window.height; ++row) {
        EncodeRow(window.y + row, window, heights.data() + static_cast<std::size_t>(row) * width, writer);
    }
}

void DemEncoder::EncodeRow(std::int64_t row, const RasterWindow& window, const double* heights,
                           LasPointWriter& writer) {
    const double x0 = steps_[0] + static_cast<double>(row) * steps_[2];
    const double y0 = steps_[3] + static_cast<double>(row) * steps_[5];
    const double xStep = steps_[1];
    const double yStep = steps_[4];
    const AxisScale scale = heightScale_;
    const std::int64_t end = std::int64_t{window.x} + window.width;
    const std::int64_t step = lattice_.Step();
    for (std::int64_t column = lattice_.FirstColumn(row, window.x); column < end; column += step) {
        const double height = heights[column - window.x];
        if (std::isnan(height)) {
            continue;
        }
        lowest_ = std::min(lowest_, height);
        highest_ = std::max(highest_, height);
        const double z = (height - scale.offset) / scale.scale;
        // Rounding may add half a step.
        hasOverflown_ = hasOverflown_ || std::abs(z) > kMostAxisSteps - 1;
        if (!hasOverflown_) {
            const auto across = static_cast<double>(column);
            writer.Add({Nearest(x0 + across * xStep), Nearest(y0 + across * yStep), Nearest(z)});
        }
    }
}

}  // namespace orvex
