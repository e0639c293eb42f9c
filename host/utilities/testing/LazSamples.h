#pragma once
#include <cstdint>
#include <string>

namespace orvex::testing {

/// What a small LAS or LAZ file is to hold. Points have values in every field of their format.
struct LazSample {
    std::uint8_t versionMinor = 2;
    std::uint8_t pointFormat = 1;
    std::uint16_t recordLength = 28;  ///< more than the format's own: extra bytes
    std::uint32_t points = 1000;
    bool compatibilityMode = false;   ///< formats 6 to 10 packed into older ones when compressed
    std::uint32_t chunkSize = 50000;  ///< points in a chunk when compressed
};

/// Writes the sample, compressed or not; the two hold the same points and records.
void WriteSample(const std::wstring& path, const LazSample& sample, bool compress);

}  // namespace orvex::testing
