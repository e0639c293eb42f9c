#pragma once
#include <cstdint>

namespace orvex {

/// What a point data record format carries (tables 7 to 17 of the LAS 1.4 format). Lengths are bytes without
/// extra bytes.
struct PointFormatFacts {
    std::uint16_t minimumLength;
    bool hasGpsTime;
    bool hasColor;
    bool hasNearInfrared;
    bool hasWaveform;
};

/// The largest format number that LAS 1.4 knows.
inline constexpr int kLastPointFormat = 10;

/// The facts of a format without its compression bits; null for a number that LAS 1.4 does not know.
const PointFormatFacts* FindPointFormat(int format);

}  // namespace orvex
