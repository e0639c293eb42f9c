#include "host/dem/AxisScale.h"

#include <algorithm>
#include <cmath>

namespace orvex {
namespace {

// What rounding of coordinates and offset may add.
constexpr double kMargin = 16;
// Below so many steps the offset need not be any rounder.
constexpr int kOffsetDigits = 3;

}  // namespace

double PowerOfTen(int exponent) {
    // Dividing gives the double that is nearest to the decimal number; a negative power may not.
    return exponent < 0 ? 1 / std::pow(10, -exponent) : std::pow(10, exponent);
}

int TenthPower(double number) {
    return static_cast<int>(std::floor(std::log10(number)));
}

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

}  // namespace orvex
