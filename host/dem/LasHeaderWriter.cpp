#include "host/dem/LasHeaderWriter.h"

#include <algorithm>
#include <limits>

#include "host/dem/FieldBlock.h"

namespace orvex {
namespace {

constexpr std::size_t kRecordHeaderSize = 54;
constexpr std::uint16_t kRecordSignature10 = 0xAABB;
constexpr std::uint64_t kMostLegacyPoints = std::numeric_limits<std::uint32_t>::max();

void PutCounts(FieldBlock& header, const LasHeaderFields& fields) {
    // Formats from 6 on, and more points than 32 bits count, leave the old fields at zero.
    if (fields.pointFormat < 6 && fields.points <= kMostLegacyPoints) {
        const auto count = static_cast<std::uint32_t>(fields.points);
        header.Put(107, count);
        header.Put(111, count);
    }
    if (fields.minorVersion >= 4) {
        header.Put(247, fields.points);
        header.Put(255, fields.points);
    }
}

void PutSpace(FieldBlock& header, const LasHeaderFields& fields) {
    for (std::size_t axis = 0; axis < 3; ++axis) {
        header.Put(131 + axis * 8, fields.scale[axis]);
        header.Put(155 + axis * 8, fields.offset[axis]);
        header.Put(179 + axis * 16, fields.max[axis]);
        header.Put(187 + axis * 16, fields.min[axis]);
    }
}

}  // namespace

std::uint16_t LasHeaderSize(int minorVersion) {
    if (minorVersion >= 4) {
        return 375;
    }
    return minorVersion == 3 ? 235 : 227;
}

std::string LasHeaderBytes(const LasHeaderFields& fields) {
    const std::uint16_t size = LasHeaderSize(fields.minorVersion);
    FieldBlock header(size);
    header.PutText(0, 4, "LASF");
    header.Put(6, static_cast<std::uint16_t>(fields.minorVersion >= 2 ? fields.globalEncoding : 0));
    header.Put(24, std::uint8_t{1});
    header.Put(25, static_cast<std::uint8_t>(fields.minorVersion));
    header.PutText(26, 32, fields.systemIdentifier);
    header.PutText(58, 32, fields.generatingSoftware);
    header.Put(90, fields.creationDay);
    header.Put(92, fields.creationYear);
    header.Put(94, size);
    header.Put(96, fields.offsetToPoints);
    header.Put(100, fields.recordCount);
    header.Put(104, static_cast<std::uint8_t>(fields.pointFormat));
    header.Put(105, fields.recordLength);
    PutCounts(header, fields);
    PutSpace(header, fields);
    return header.Take();
}

std::string LasRecordBytes(int minorVersion, std::string_view userId, std::uint16_t recordId,
                           std::string_view description, std::string_view data) {
    FieldBlock header(kRecordHeaderSize);
    header.Put(0, minorVersion == 0 ? kRecordSignature10 : std::uint16_t{0});
    header.PutText(2, 16, userId);
    header.Put(18, recordId);
    header.Put(20, static_cast<std::uint16_t>(std::min(data.size(), kMostLasRecordData)));
    header.PutText(22, 32, description);
    return header.Take().append(data.substr(0, kMostLasRecordData));
}

std::string LasPointsMark(int minorVersion) {
    return minorVersion == 0 ? "\xCC\xDD" : "";
}

}  // namespace orvex
