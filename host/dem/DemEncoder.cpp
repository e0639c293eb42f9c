#include "host/dem/DemEncoder.h"

#include <algorithm>
#include <cmath>

namespace orvex {
namespace {

double PowerOfTen(int exponent) {
    // Dividing gives the double that is nearest to the decimal number; a negative power may not.
    return exponent < 0 ? 1 / std::pow(10, -exponent) : std::pow(10, exponent);
}

/// The power of ten that a positive number reaches: 0 for 1 to 9.99.
int TenthPower(double number) {
    return static_cast<int>(std::floor(std::log10(number)));
}

// What rounding of coordinates and offset may add.
constexpr double kMargin = 16;
// Below so many steps the offset need not be any rounder.
constexpr int kOffsetDigits = 3;

constexpr int kThousandths = -3;
constexpr int kFinestDegrees = -8;
// Finer than what distinguishes places, whatever the unit.
constexpr int kFinestGround = -15;
// A height's thousandth of a thousandth; finer is noise of the numbers themselves.
constexpr int kFinestHeight = -9;
constexpr double kMillimetre = 0.001;

/// The finest power of ten that is wanted on the ground, from what the CRS measures in and a pixel's side.
int GroundExponent(const OGRSpatialReference* crs, double pixel) {
    // Pixels are told apart by a tenth of their side at least; where the unit is not known, by a thousandth,
    // which leaves degrees as fine as they need to be.
    const int power = TenthPower(pixel);
    if (crs == nullptr) {
        return std::min(kThousandths, power - 3);
    }
    if (crs->IsGeographic()) {
        return std::min(kFinestDegrees, power - 1);
    }
    const double metres = crs->GetLinearUnits();
    return std::min(metres > 0 ? TenthPower(kMillimetre / metres * 1.000001) : kThousandths, power - 1);
}

struct Extent {
    double low, high;
};

/// Of the pixel centres, along one axis: v = origin + column * across + row * down.
Extent CentreExtent(double origin, double across, double down, RasterWindows::Size size) {
    const double start = origin + (across + down) / 2;
    const double right = across * (size.width - 1);
    const double below = down * (size.height - 1);
    return {start + std::min(right, 0.0) + std::min(below, 0.0),
            start + std::max(right, 0.0) + std::max(below, 0.0)};
}

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

AxisScale FitAxis(double low, double high, int exponent) {
    const double span = high - low;
    const double middle = low + span / 2;
    while (true) {
        const int round = std::max(exponent + kOffsetDigits, span > 0 ? TenthPower(span) : exponent);
        const double unit = PowerOfTen(round);
        // Adding zero turns a negative zero into a plain one.
        const AxisScale axis{PowerOfTen(exponent), std::round(middle / unit) * unit + 0.0};
        const double reach = std::max(high - axis.offset, axis.offset - low);
        if (reach <= (kMostAxisSteps - kMargin) * axis.scale) {
            return axis;
        }
        ++exponent;
    }
}

std::array<AxisScale, 2> GroundScales(const DemRaster& raster) {
    const auto& t = raster.Transform();
    const double pixel = std::min(std::hypot(t[1], t[4]), std::hypot(t[2], t[5]));
    const int exponent = std::max(GroundExponent(raster.Crs(), pixel), kFinestGround);
    const Extent x = CentreExtent(t[0], t[1], t[2], raster.Size());
    const Extent y = CentreExtent(t[3], t[4], t[5], raster.Size());
    return {FitAxis(x.low, x.high, exponent), FitAxis(y.low, y.high, exponent)};
}

AxisScale FirstHeightScale() {
    return {PowerOfTen(kThousandths), 0};
}

AxisScale HeightScale(double low, double high, bool hasFractions) {
    const double span = high - low;
    const bool isFine = hasFractions && span > 0 && span < 1;
    return FitAxis(low, high, isFine ? std::max(TenthPower(span) - 3, kFinestHeight) : kThousandths);
}

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
