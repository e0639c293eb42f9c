#include "host/utilities/GeoKeys.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <set>
#include <span>

#include "support/ByteReader.h"
#include "support/Format.h"
#include "support/LasFormat.h"
#include "support/Text.h"

namespace orvex {
namespace {

constexpr std::size_t kNumbersPerKey = 4;
// The only keys whose value is a text.
constexpr std::array<std::uint16_t, 4> kTextKeys = {
    las::geo_key::kCitation, las::geo_key::kGeographicCitation, las::geo_key::kProjectedCitation,
    las::geo_key::kVerticalCitation};

std::span<const std::byte> BytesOf(const std::string& payload) {
    return std::as_bytes(std::span(payload)).first(std::min(payload.size(), las::kMostVlrData));
}

template <typename T>
std::vector<T> ReadNumbers(const std::string& payload) {
    const auto bytes = BytesOf(payload);
    std::vector<T> numbers(bytes.size() / sizeof(T));
    if (!numbers.empty()) {
        std::memcpy(numbers.data(), bytes.data(), numbers.size() * sizeof(T));
    }
    return numbers;
}

struct Key {
    std::uint16_t id, location, count, value;
};

bool IsUsable(const Key& key, const GeoKeys& keys) {
    if (key.id < las::geo_key::kFirst || key.id > las::geo_key::kLast) {
        return false;
    }
    const bool wantsText = std::ranges::find(kTextKeys, key.id) != kTextKeys.end();
    const std::size_t end = std::size_t{key.value} + key.count;
    switch (key.location) {
        case 0:
            return !wantsText && key.count <= 1;
        case las::kGeoDoublesRecordId:
            return !wantsText && key.count > 0 && end <= keys.doubles.size();
        case las::kGeoTextRecordId:
            return wantsText && end <= keys.text.size();
        // Numbers kept behind the keys would move when a key is left out; no key of a CRS has several.
        default:
            return false;
    }
}

void AddReason(std::wstring& reason, const std::wstring& text) {
    reason += (reason.empty() ? L"" : L" ") + text;
}

template <typename T>
void Append(std::string& bytes, T value) {
    bytes.append(reinterpret_cast<const char*>(&value), sizeof(value));
}

/// One entry of a TIFF directory. A value of up to four bytes stands in the entry, a longer one behind it.
struct TiffEntry {
    std::uint16_t tag, type;
    std::uint32_t count;
    std::string value;
};

constexpr std::uint16_t kAscii = 2, kShort = 3, kDouble = 12;

TiffEntry ShortEntry(std::uint16_t tag, std::uint16_t value) {
    TiffEntry entry{tag, kShort, 1, {}};
    Append(entry.value, value);
    return entry;
}

template <typename T>
TiffEntry ArrayEntry(std::uint16_t tag, std::uint16_t type, std::span<const T> values) {
    return {tag, type, static_cast<std::uint32_t>(values.size()),
            std::string(reinterpret_cast<const char*>(values.data()), values.size_bytes())};
}

}  // namespace

GeoKeys ReadGeoKeys(const std::string& directory, const std::string& doubles, const std::string& text,
                    std::wstring& reason) {
    GeoKeys keys{{}, ReadNumbers<double>(doubles), text.substr(0, las::kMostVlrData)};
    const auto numbers = ReadNumbers<std::uint16_t>(directory);
    if (numbers.size() < kNumbersPerKey) {
        AddReason(reason, Text(text::kGeoKeyDirectoryTooShort));
        return keys;
    }
    const std::size_t announced = numbers[3];
    const std::size_t present = numbers.size() / kNumbersPerKey - 1;
    if (announced > present) {
        AddReason(reason, FormatText(Text(text::kGeoKeyCountMismatch), {announced, present}));
    }
    std::vector<std::uint16_t> kept;
    std::set<std::uint16_t> seen;
    for (std::size_t i = 1; i <= std::min(announced, present); ++i) {
        const auto* entry = numbers.data() + i * kNumbersPerKey;
        const Key key{entry[0], entry[1], entry[2], entry[3]};
        if (IsUsable(key, keys) && seen.insert(key.id).second) {
            kept.insert(kept.end(), entry, entry + kNumbersPerKey);
        } else {
            AddReason(reason, FormatText(Text(text::kGeoKeyUnusable), {key.id}));
        }
    }
    if (!kept.empty()) {
        keys.directory = {1, numbers[1], numbers[2], static_cast<std::uint16_t>(seen.size())};
        keys.directory.insert(keys.directory.end(), kept.begin(), kept.end());
    }
    return keys;
}

std::string GeoKeysToTiff(const GeoKeys& keys) {
    constexpr std::uint16_t kPixelOffset = 8;
    std::vector<TiffEntry> entries = {
        ShortEntry(256, 1),
        ShortEntry(257, 1),  // width, height
        ShortEntry(258, 8),
        ShortEntry(259, 1),  // bits per sample, no compression
        ShortEntry(262, 1),
        ShortEntry(273, kPixelOffset),  // black is zero, where the pixel is
        ShortEntry(277, 1),
        ShortEntry(278, 1),  // samples per pixel, rows per strip
        ShortEntry(279, 1),  // bytes of the strip
        ArrayEntry<std::uint16_t>(las::kGeoKeyDirectoryRecordId, kShort, keys.directory)};
    if (!keys.doubles.empty()) {
        entries.push_back(ArrayEntry<double>(las::kGeoDoublesRecordId, kDouble, keys.doubles));
    }
    if (!keys.text.empty()) {
        entries.push_back(ArrayEntry<char>(las::kGeoTextRecordId, kAscii, keys.text));
    }
    // Header, the pixel filled up to eight bytes, the directory, the long values.
    constexpr std::uint32_t kDirectoryOffset = 16;
    std::string tiff("II*\0", 4);
    Append(tiff, kDirectoryOffset);
    tiff.append(kDirectoryOffset - tiff.size(), '\0');
    std::string longValues;
    const std::size_t longStart = kDirectoryOffset + 2 + entries.size() * 12 + 4;
    Append(tiff, static_cast<std::uint16_t>(entries.size()));
    for (const TiffEntry& entry : entries) {
        Append(tiff, entry.tag);
        Append(tiff, entry.type);
        Append(tiff, entry.count);
        if (entry.value.size() <= 4) {
            tiff += entry.value;
            tiff.append(4 - entry.value.size(), '\0');
        } else {
            Append(tiff, static_cast<std::uint32_t>(longStart + longValues.size()));
            longValues += entry.value;
            longValues.append(longValues.size() % 2, '\0');
        }
    }
    Append(tiff, std::uint32_t{0});
    return tiff + longValues;
}

}  // namespace orvex
