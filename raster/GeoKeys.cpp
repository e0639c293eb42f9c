#include "raster/GeoKeys.h"

#include <cpl_string.h>

#include <algorithm>
#include <array>
#include <cstring>
#include <optional>
#include <string_view>
#include <vector>

#include "raster/TiffTags.h"
#include "support/GdalAccess.h"
#include "support/Text.h"
#include "support/TextCache.h"

namespace orvex {
namespace {

constexpr std::size_t kKeysKept = 256;
constexpr std::size_t kBytesKept = std::size_t{4} << 20U;

constexpr std::uint16_t kDirectoryTag = 34735;
constexpr std::uint16_t kDoublesTag = 34736;
constexpr std::uint16_t kTextTag = 34737;
constexpr std::uint16_t kMetadataTag = 42112;

TextCache<GeoKeyFacts>& Cache() {
    // Never destroyed: a worker may still ask while the process ends.
    static auto* const cache = new TextCache<GeoKeyFacts>(kKeysKept, kBytesKept);
    return *cache;
}

bool IsGeoTiff(GDALDatasetH dataset) {
    return std::string_view(GDALGetDriverShortName(GDALGetDatasetDriver(dataset))) == "GTiff";
}

/// True if a file beside the TIFF may have a word in its CRS: all but world files and overviews.
bool MayStateCrs(const std::wstring& path) {
    const std::wstring extension = UpperExtensionOf(path);
    return extension != L".OVR" && extension != L".TFW" && extension != L".TIFW" && extension != L".WLD";
}

bool HasCrsBeside(GDALDatasetH dataset, const std::wstring& path) {
    const CPLStringList files(GDALGetFileList(dataset));
    for (int i = 0; i < files.size(); ++i) {
        const std::wstring file = NativePath(FromUtf8(GdalAccess::PathOf(files[i])));
        if (PathKey(file) != PathKey(path) && MayStateCrs(file)) {
            return true;
        }
    }
    return false;
}

/// True if the directory of keys is whole and says what a pixel is.
bool StatesRasterType(std::string_view directory) {
    constexpr std::size_t kEntry = 4;
    constexpr std::uint16_t kRasterType = 1025;
    std::vector<std::uint16_t> numbers(directory.size() / sizeof(std::uint16_t));
    if (numbers.size() < kEntry) {
        return false;
    }
    std::memcpy(numbers.data(), directory.data(), numbers.size() * sizeof(std::uint16_t));
    if (numbers.size() < kEntry * (std::size_t{numbers[kEntry - 1]} + 1)) {
        return false;
    }
    for (std::size_t i = kEntry; i <= kEntry * numbers[kEntry - 1]; i += kEntry) {
        if (numbers[i] == kRasterType && numbers[i + 1] == 0 && numbers[i + 2] == 1) {
            return true;
        }
    }
    return false;
}

bool StatesUnits(TiffTags& tiff) {
    const std::optional<TiffTag> tag = tiff.Find(kMetadataTag);
    if (!tag) {
        return false;
    }
    const std::string metadata = ToUtf8(ToUpper(FromUtf8(tiff.Values(*tag, 1))));
    return metadata.empty() || metadata.find("UNITTYPE") != std::string::npos;
}

/// Appends the values of a tag with their length in front; false if they are not as they should be.
bool Append(std::string& keys, TiffTags& tiff, std::uint16_t id, std::uint16_t type, unsigned size) {
    const std::optional<TiffTag> tag = tiff.Find(id);
    const std::string values = tag && tag->type == type ? tiff.Values(*tag, size) : std::string();
    keys += std::to_string(values.size()) + ' ' + values;
    return !tag || !values.empty();
}

}  // namespace

std::string ReadGeoKeys(GDALDatasetH dataset, const std::wstring& path) {
    if (!IsGeoTiff(dataset) || GDALGetGCPCount(dataset) > 0 || HasCrsBeside(dataset, path)) {
        return {};
    }
    TiffTags tiff(path);
    const std::optional<TiffTag> directory = tiff.Find(kDirectoryTag);
    if (!directory || tiff.IsOdd() || !StatesRasterType(tiff.Values(*directory, 2)) || StatesUnits(tiff)) {
        return {};
    }
    std::string keys;
    const bool isWhole = Append(keys, tiff, kDirectoryTag, TiffTag::kShort, 2) &&
                         Append(keys, tiff, kDoublesTag, TiffTag::kDouble, 8) &&
                         Append(keys, tiff, kTextTag, TiffTag::kAscii, 1);
    return isWhole ? keys : std::string();
}

bool FindGeoKeyFacts(const std::string& keys, GeoKeyFacts& facts) {
    return !keys.empty() && Cache().Find(keys, facts);
}

void KeepGeoKeyFacts(const std::string& keys, const GeoKeyFacts& facts) {
    if (!keys.empty()) {
        Cache().Put(keys, facts);
    }
}

}  // namespace orvex
