#pragma once
// The public header block of a LAS file.
#include <array>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>

#include "support/LasFormat.h"

namespace orvex {

/// View of a header block in memory; copying it copies the view. Fields beyond the header's stated size read
/// as 0, whatever follows the header in memory. Texts end at their first zero byte.
class LasHeader {
  public:
    LasHeader() = default;
    /// `block` starts at the first byte of the file and holds at least las::kLegacyHeaderSize bytes.
    explicit LasHeader(std::span<const std::byte> block);

    /// True if the file begins with "LASF".
    bool HasSignature() const;

    std::uint16_t FileSourceId() const;
    std::uint16_t GlobalEncoding() const;
    /// True if GPS times are adjusted standard GPS times, not week seconds.
    bool HasStandardGpsTime() const { return (GlobalEncoding() & las::encoding::kStandardGpsTime) != 0; }
    /// True if the CRS is in the WKT record, not in the GeoKeys.
    bool HasWktBit() const { return (GlobalEncoding() & las::encoding::kWkt) != 0; }
    bool HasInternalWaveform() const { return (GlobalEncoding() & las::encoding::kInternalWaveform) != 0; }
    bool HasExternalWaveform() const { return (GlobalEncoding() & las::encoding::kExternalWaveform) != 0; }
    /// Project id as 8-4-4-4-12 upper-case hexadecimal digits; empty if it is all zeros.
    std::string ProjectId() const;

    std::uint8_t VersionMajor() const;
    std::uint8_t VersionMinor() const;
    /// major * 10 + minor.
    int Version() const;
    /// A las::VersionCode: 1.0 gives 0, 1.1 gives 1, 2.0 gives 2, 1.2 gives 3, 1.3 gives 4, 1.4 gives 5, any
    /// other version -1.
    int VersionCode() const;

    std::string SystemIdentifier() const;
    std::string GeneratingSoftware() const;
    /// Day of the year, 1 to 366; 0 when not set.
    std::uint16_t CreationDay() const;
    std::uint16_t CreationYear() const;
    /// Creation date; nullopt if none is set or the stored one is impossible.
    std::optional<std::chrono::year_month_day> CreationDate() const;
    /// True for a day that its year does not have, and for years in which no such file was made.
    bool IsCreationDateImpossible() const;

    /// Bytes as stated in the header; the first VLR follows.
    std::uint16_t HeaderSize() const;
    /// Bytes from the start of the file.
    std::uint32_t OffsetToPoints() const;
    /// As stated in the header; the file may hold fewer.
    std::uint32_t VlrCount() const;

    /// Point data record format without the compression bits.
    int PointFormat() const;
    bool IsCompressed() const;
    /// Bytes from one point record to the next.
    std::uint16_t PointRecordLength() const;
    std::uint32_t LegacyPointCount() const;
    /// The 64-bit count in LAS 1.4, else the legacy count.
    std::uint64_t PointCount() const;
    /// Returns that the header has point counts for: 15 in LAS 1.4, else 5.
    int ReturnCount() const { return VersionCode() == las::kLas14 ? 15 : 5; }
    /// Number of points of a return, 1 to ReturnCount(); 0 for any other.
    std::uint64_t PointsOfReturn(int number) const;

    // X, Y, Z.
    std::array<double, 3> Scale() const;
    std::array<double, 3> Offset() const;
    std::array<double, 3> Minimum() const;
    std::array<double, 3> Maximum() const;

    /// Bytes from the start of the file; 0 if there are none.
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
