#pragma once
#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <vector>

namespace orvex {

/// A raster reduced to the size of a small picture.
struct RasterOverview {
    int width = 0;                   ///< pixels; 0 when there is no picture
    int height = 0;                  ///< pixels
    std::vector<std::uint8_t> rgba;  ///< row by row from the top, four bytes a pixel, alpha not multiplied in
    std::wstring problem;            ///< why there is no picture, in plain words; empty when there is one
};

/// How much work a picture may be.
struct OverviewLimits {
    int longSide = 512;  ///< pixels of the picture
    /// Bytes of samples that have to be decoded for it.
    std::uint64_t mostBytes = 768ULL << 20;
    /// Bytes of one block, which is decoded as a whole.
    std::uint64_t mostBlockBytes = 256ULL << 20;
    std::int64_t mostMs = 20000;  ///< time of reading
};

/// Reads a raster at reduced size, from its reduced-resolution levels where it has them: colours as they are,
/// palettes resolved, everything else in shades of grey from the picture's darkest to its brightest value;
/// what holds no data is transparent. Nothing is written. `isCancelled` is asked between pieces; the overview
/// is then without picture and problem. Never throws, except for want of memory. Safe from any thread.
RasterOverview ReadRasterOverview(const std::wstring& path, const std::function<bool()>& isCancelled,
                                  const OverviewLimits& limits = {});

}  // namespace orvex
