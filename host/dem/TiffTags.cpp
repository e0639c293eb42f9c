#include "host/dem/TiffTags.h"

#include "support/ByteReader.h"

namespace orvex {
namespace {

constexpr std::uint32_t kLittleEndianTiff = 0x002A4949;  // "II", 42
constexpr std::uint64_t kEntrySize = 12;
constexpr std::uint64_t kInlineSize = 4;

std::uint64_t SizeOfType(std::uint16_t type) {
    switch (type) {
        case 2:
            return 1;
        case 3:
            return 2;
        case 12:
            return 8;
        default:
            return 0;
    }
}

}  // namespace

std::optional<std::string> FindTiffTag(std::span<const std::byte> tiff, std::uint16_t tag) {
    const ByteReader reader(tiff);
    if (reader.Read<std::uint32_t>(0) != kLittleEndianTiff) {
        return std::nullopt;
    }
    const std::uint64_t directory = reader.Read<std::uint32_t>(4);
    const std::uint64_t entries = reader.Read<std::uint16_t>(directory);
    for (std::uint64_t i = 0; i < entries; ++i) {
        const std::uint64_t entry = directory + 2 + i * kEntrySize;
        if (!reader.Contains(entry, kEntrySize) || reader.Read<std::uint16_t>(entry) != tag) {
            continue;
        }
        const std::uint64_t length =
            SizeOfType(reader.Read<std::uint16_t>(entry + 2)) * reader.Read<std::uint32_t>(entry + 4);
        const std::uint64_t place = length <= kInlineSize ? entry + 8 : reader.Read<std::uint32_t>(entry + 8);
        if (length == 0 || !reader.Contains(place, length)) {
            return std::nullopt;
        }
        const auto bytes = reader.Bytes(place, length);
        return std::string(reinterpret_cast<const char*>(bytes.data()), bytes.size());
    }
    return std::nullopt;
}

}  // namespace orvex
