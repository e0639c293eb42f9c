#pragma once
// The bytes of a LAS file before its points.
#include <array>
#include <cstdint>
#include <string>
#include <string_view>

namespace orvex {

/// Header fields of a file of single returns. X, Y, Z in the arrays.
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

/// Size of the header of LAS 1.x in bytes; x is 0 to 4.
std::uint16_t LasHeaderSize(int minorVersion);

std::string LasHeaderBytes(const LasHeaderFields& fields);

/// A VLR with its header. Longer texts are cut to 16 (user id) and 32 characters, data to 65,535 bytes.
std::string LasRecordBytes(int minorVersion, std::string_view userId, std::uint16_t recordId,
                           std::string_view description, std::string_view data);

/// Start signature of the point data, which LAS 1.0 has behind its VLRs; empty for later versions.
std::string LasPointsMark(int minorVersion);

}  // namespace orvex
