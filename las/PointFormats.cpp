#include "las/PointFormats.h"

#include <array>
#include <cstddef>

namespace orvex {
namespace {

//  length  GPS time  colour  near infrared  waveform
constexpr std::array<PointFormatFacts, kLastPointFormat + 1> kFormats{{
    {20, false, false, false, false},  // 0
    {28, true, false, false, false},   // 1
    {26, false, true, false, false},   // 2
    {34, true, true, false, false},    // 3
    {57, true, false, false, true},    // 4
    {63, true, true, false, true},     // 5
    {30, true, false, false, false},   // 6
    {36, true, true, false, false},    // 7
    {38, true, true, true, false},     // 8
    {59, true, false, false, true},    // 9
    {67, true, true, true, true},      // 10
}};

}  // namespace

const PointFormatFacts* FindPointFormat(int format) {
    return format >= 0 && format <= kLastPointFormat ? &kFormats[static_cast<std::size_t>(format)] : nullptr;
}

}  // namespace orvex
