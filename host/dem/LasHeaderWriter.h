#pragma once
// The bytes of a LAS file before its points.
#include <array>
#include <cstdint>
#include <string>
#include <string_view>

namespace orvex {

/// Bits of the global encoding (table 4 of the LAS 1.4 format).
inline constexpr std::uint16_t kLasStandardGpsTime = 0x01;
inline constexpr std::uint16_t kLasSyntheticReturns = 0x08;
inline constexpr std::uint16_t kLasWkt = 0x10;

/// What a header says of a file of single returns. X, Y, Z in the arrays.
struct LasHeaderFields {
    int minorVersion = 4;  ///< LAS 1.x
    int pointFormat = 0;
    std::uint16_t recordLength = 20;   ///< bytes of a point
    std::uint16_t globalEncoding = 0;  ///< ignored where the version has none (1.0, 1.1)
    std::string systemIdentifier;      ///< at most 32 characters, as the next
    std::string generatingSoftware;
    std::uint16_t creationDay = 0;  ///< of the year, from 1
    std::uint16_t creationYear = 0;
    std::uint32_t recordCount = 0;
    std::uint32_t offsetToPoints = 0;
    std::uint64_t points = 0;  ///< below 2^32 for versions before 1.4
    std::array<double, 3> scale{1, 1, 1};
    std::array<double, 3> offset{};
    std::array<double, 3> min{};
    std::array<double, 3> max{};
};

/// Bytes of the header of a version: 227, 235 or 375.
std::uint16_t LasHeaderSize(int minorVersion);

std::string LasHeaderBytes(const LasHeaderFields& fields);

/// The most bytes of data that a variable length record holds.
inline constexpr std::size_t kMostLasRecordData = 65535;

/// A variable length record with its header; the user id has at most 16, the description 32 characters.
std::string LasRecordBytes(int minorVersion, std::string_view userId, std::uint16_t recordId,
                           std::string_view description, std::string_view data);

/// What LAS 1.0 wants between the records and the points; empty for later versions.
std::string LasPointsMark(int minorVersion);

}  // namespace orvex
