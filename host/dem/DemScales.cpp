#include "host/dem/DemScales.h"

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

}  // namespace orvex
