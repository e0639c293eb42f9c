#include "las/LasHeader.h"

#include <algorithm>

#include "support/ByteReader.h"

namespace orvex {
namespace {

namespace at = las::at;

// Bytes that belong to a header of the given size. The start of the waveform data counts as present as soon
// as the header is longer than the legacy one.
std::size_t HeldBytes(std::uint16_t headerSize) {
    if (headerSize <= las::kLegacyHeaderSize) {
        return las::kLegacyHeaderSize;
    }
    return std::clamp(headerSize, las::kHeaderSize13, las::kHeaderSize14);
}

}  // namespace

LasHeader::LasHeader(std::span<const std::byte> block) : block_(block) {
    block_ = block.first(std::min(block.size(), HeldBytes(HeaderSize())));
}

template <typename T>
T LasHeader::Read(std::uint64_t offset) const {
    return ByteReader(block_).Read<T>(offset);
}

bool LasHeader::HasSignature() const {
    return ByteReader(block_).FixedText(at::kSignature, las::kSignature.size()) == las::kSignature;
}

std::uint16_t LasHeader::FileSourceId() const {
    return Read<std::uint16_t>(at::kFileSourceId);
}

std::uint16_t LasHeader::GlobalEncoding() const {
    return Read<std::uint16_t>(at::kGlobalEncoding);
}

std::string LasHeader::ProjectId() const {
    // The first three parts are little-endian numbers, the last two are bytes in order.
    constexpr std::array<int, 16> kOrder{3, 2, 1, 0, 5, 4, 7, 6, 8, 9, 10, 11, 12, 13, 14, 15};
    constexpr std::string_view kDigits = "0123456789ABCDEF";
    std::string text;
    bool isSet = false;
    for (std::size_t i = 0; i < kOrder.size(); ++i) {
        const auto byte = Read<std::uint8_t>(at::kProjectId + static_cast<std::uint64_t>(kOrder[i]));
        isSet = isSet || byte != 0;
        if (i == 4 || i == 6 || i == 8 || i == 10) {
            text += '-';
        }
        text += kDigits[byte >> 4U];
        text += kDigits[byte & 0xFU];
    }
    return isSet ? text : std::string();
}

std::uint8_t LasHeader::VersionMajor() const {
    return Read<std::uint8_t>(at::kVersionMajor);
}

std::uint8_t LasHeader::VersionMinor() const {
    return Read<std::uint8_t>(at::kVersionMinor);
}

int LasHeader::Version() const {
    return VersionMajor() * 10 + VersionMinor();
}

int LasHeader::VersionCode() const {
    if (VersionMajor() == 2 && VersionMinor() == 0) {
        return las::kLas20;
    }
    const bool isLas1 = VersionMajor() == 1 && VersionMinor() < las::kVersions.size();
    return isLas1 ? las::kVersions[VersionMinor()].code : las::kUnknownVersion;
}

std::string LasHeader::SystemIdentifier() const {
    return ByteReader(block_).FixedText(at::kSystemIdentifier, las::kHeaderTextLength);
}

std::string LasHeader::GeneratingSoftware() const {
    return ByteReader(block_).FixedText(at::kGeneratingSoftware, las::kHeaderTextLength);
}

std::uint16_t LasHeader::CreationDay() const {
    return Read<std::uint16_t>(at::kCreationDay);
}

std::uint16_t LasHeader::CreationYear() const {
    return Read<std::uint16_t>(at::kCreationYear);
}

std::optional<std::chrono::year_month_day> LasHeader::CreationDate() const {
    using namespace std::chrono;
    if (CreationDay() == 0 || IsCreationDateImpossible()) {
        return std::nullopt;
    }
    return sys_days(year(CreationYear()) / January / 1) + days(CreationDay() - 1);
}

bool LasHeader::IsCreationDateImpossible() const {
    constexpr int kFirstYear = 1970;
    constexpr int kLastYear = 9999;
    const int year = CreationYear();
    const int daysOfYear = std::chrono::year(year).is_leap() ? 366 : 365;
    const bool isSet = year != 0 || CreationDay() != 0;
    return isSet && (year < kFirstYear || year > kLastYear || CreationDay() > daysOfYear);
}

std::uint16_t LasHeader::HeaderSize() const {
    return Read<std::uint16_t>(at::kHeaderSize);
}

std::uint32_t LasHeader::OffsetToPoints() const {
    return Read<std::uint32_t>(at::kOffsetToPoints);
}

std::uint32_t LasHeader::VlrCount() const {
    return Read<std::uint32_t>(at::kVlrCount);
}

int LasHeader::PointFormat() const {
    return Read<std::uint8_t>(at::kPointFormat) & static_cast<std::uint8_t>(~las::kCompressionBits);
}

bool LasHeader::IsCompressed() const {
    return (Read<std::uint8_t>(at::kPointFormat) & las::kCompressionBits) != 0;
}

std::uint16_t LasHeader::PointRecordLength() const {
    return Read<std::uint16_t>(at::kPointRecordLength);
}

std::uint32_t LasHeader::LegacyPointCount() const {
    return Read<std::uint32_t>(at::kLegacyPointCount);
}

std::uint64_t LasHeader::PointCount() const {
    return VersionCode() == las::kLas14 ? Read<std::uint64_t>(at::kPointCount) : LegacyPointCount();
}

std::uint64_t LasHeader::PointsOfReturn(int number) const {
    if (number < 1 || number > ReturnCount()) {
        return 0;
    }
    const auto index = static_cast<std::uint64_t>(number - 1);
    return VersionCode() == las::kLas14 ? Read<std::uint64_t>(at::kPointsByReturn + 8 * index)
                                        : Read<std::uint32_t>(at::kLegacyPointsByReturn + 4 * index);
}

std::array<double, 3> LasHeader::Triple(std::uint64_t x, std::uint64_t stride) const {
    return {Read<double>(x), Read<double>(x + stride), Read<double>(x + 2 * stride)};
}

std::array<double, 3> LasHeader::Scale() const {
    return Triple(at::kScale, 8);
}

std::array<double, 3> LasHeader::Offset() const {
    return Triple(at::kOffset, 8);
}

std::array<double, 3> LasHeader::Minimum() const {
    return Triple(at::kMinimum, 16);
}

std::array<double, 3> LasHeader::Maximum() const {
    return Triple(at::kMaximum, 16);
}

std::uint64_t LasHeader::WaveformStart() const {
    return Read<std::uint64_t>(at::kWaveformStart);
}

std::uint64_t LasHeader::EvlrStart() const {
    return Read<std::uint64_t>(at::kEvlrStart);
}

std::uint32_t LasHeader::EvlrCount() const {
    return Read<std::uint32_t>(at::kEvlrCount);
}

}  // namespace orvex
