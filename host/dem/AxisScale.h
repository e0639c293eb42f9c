#pragma once
#include <cstdint>

namespace orvex {

/// How the coordinates of an axis become whole numbers: value = number * scale + offset.
struct AxisScale {
    double scale = 1;  ///< a power of ten
    double offset = 0;

    bool operator==(const AxisScale&) const = default;
};

/// The largest number that a coordinate may become, whatever its sign.
inline constexpr double kMostAxisSteps = 2147483647;

/// 10 to a power.
double PowerOfTen(int exponent);

/// The power of ten that a positive number reaches: 0 for 1 to 9.99.
int TenthPower(double number);

/// The scale 10^`exponent` for an extent, or the next coarser one with which all of it fits into 32 bits; the
/// offset is a round number near its middle. `low` and `high` are finite.
AxisScale FitAxis(double low, double high, int exponent);

}  // namespace orvex
