#pragma once
// The public header block of a LAS file.
#include <array>
#include <cstddef>
#include <cstdint>
#include <span>
#include <string>

namespace orvex {

/// A view of a header block in memory; copying it copies the view. A field that lies beyond what the header
/// size says the header holds reads as 0, whatever bytes follow the header in memory. Texts end at their
/// first zero byte.
class LasHeader {
  public:
    /// Size of the LAS 1.4 header; no more of a header is ever held.
    static constexpr std::size_t kSize = 375;
    /// Size up to LAS 1.2; no header is shorter.
    static constexpr std::size_t kLegacySize = 227;
    /// Size of LAS 1.3: the start of the waveform data follows the legacy header.
    static constexpr std::size_t kWaveformSize = 235;

    LasHeader() = default;
    /// `block` holds the file from its first byte; at least kLegacySize bytes make a header.
    explicit LasHeader(std::span<const std::byte> block);

    /// True when the file begins with "LASF".
    bool HasSignature() const;

    std::uint16_t FileSourceId() const;
    std::uint16_t GlobalEncoding() const;
    /// Global encoding bit 0: GPS time is adjusted standard GPS time, not week seconds.
    bool HasStandardGpsTime() const { return (GlobalEncoding() & 0x1U) != 0; }
    /// Global encoding bit 4: the CRS is the WKT record, not the GeoKeys.
    bool HasWktBit() const { return (GlobalEncoding() & 0x10U) != 0; }
    /// The project id as 8-4-4-4-12 upper-case hexadecimal digits; empty when it is all zeros.
    std::string ProjectId() const;

    std::uint8_t VersionMajor() const;
    std::uint8_t VersionMinor() const;
    /// major * 10 + minor.
    int Version() const;
    /// 1.0 gives 0, 1.1 gives 1, 2.0 gives 2, 1.2 gives 3, 1.3 gives 4, 1.4 gives 5, anything else -1. Codes
    /// are compared with less-than.
    int VersionCode() const;

    std::string SystemIdentifier() const;
    std::string GeneratingSoftware() const;
    /// Day of the year, 1 to 366; 0 when not set.
    std::uint16_t CreationDay() const;
    std::uint16_t CreationYear() const;

    /// Bytes; the first record follows the header.
    std::uint16_t HeaderSize() const;
    /// Bytes from the start of the file.
    std::uint32_t OffsetToPoints() const;
    /// As the header says it: an upper bound.
    std::uint32_t VlrCount() const;

    /// Point data record format without the compression bits (6 and 7).
    int PointFormat() const;
    bool IsCompressed() const;
    /// Bytes from one point record to the next.
    std::uint16_t PointRecordLength() const;
    std::uint32_t LegacyPointCount() const;
    /// The 64-bit count when the version is exactly 1.4, else the legacy count.
    std::uint64_t PointCount() const;
    /// How many numbers of points by return the version holds: 15 from LAS 1.4 on, else 5.
    int ReturnCount() const { return VersionCode() == 5 ? 15 : 5; }
    /// Number of points of a return, 1 to ReturnCount(); 0 for any other.
    std::uint64_t PointsOfReturn(int number) const;

    // X, Y, Z.
    std::array<double, 3> Scale() const;
    std::array<double, 3> Offset() const;
    std::array<double, 3> Minimum() const;
    std::array<double, 3> Maximum() const;

    /// Bytes from the start of the file; 0 for none.
    std::uint64_t WaveformStart() const;
    std::uint64_t EvlrStart() const;
    std::uint32_t EvlrCount() const;

  private:
    template <typename T>
    T Read(std::uint64_t offset) const;
    std::array<double, 3> Triple(std::uint64_t x, std::uint64_t stride) const;

    std::span<const std::byte> block_;
};

}  // namespace orvex
