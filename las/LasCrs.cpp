#include "las/LasCrs.h"

#include <algorithm>
#include <map>
#include <mutex>
#include <tuple>
#include <utility>

#include "crs/GdalSetup.h"
#include "las/LASFile.h"
#include "orvexcommon/OrvexUtilities.h"

namespace orvex {
namespace {

constexpr std::size_t kMostCached = 256;

std::string BytesOf(const LASFile& file, std::uint16_t recordId) {
    const auto data = file.FindProjectionRecord(recordId);
    return data ? std::string(reinterpret_cast<const char*>(data->data()), data->size()) : std::string();
}

// The text ends at its first zero byte; some writers pad it with blanks or line breaks.
std::string WktRecord(const LASFile& file) {
    std::string text = BytesOf(file, las::kWktRecordId);
    text.resize(std::min(text.find('\0'), text.size()));
    text.erase(text.find_last_not_of(" \t\r\n") + 1);
    return text;
}

// The tiles of a folder share a few CRSs, and a conversion takes far longer than reading a header.
LasCrs ConvertGeoKeys(const std::string& directory, const std::string& doubles, const std::string& text) {
    static std::mutex lock;
    static std::map<std::tuple<std::string, std::string, std::string>, LasCrs> cache;
    auto key = std::make_tuple(directory, doubles, text);
    {
        const std::lock_guard guard(lock);
        if (const auto known = cache.find(key); known != cache.end()) {
            return known->second;
        }
    }
    EnsureGdal();
    std::string reason;
    LasCrs crs{OrvexUtilities::CrsWktFromGeoKeys(directory, doubles, text, reason), false};
    crs.isDamaged = crs.wkt.empty() && !reason.empty();
    const std::lock_guard guard(lock);
    if (cache.size() >= kMostCached) {
        cache.clear();
    }
    cache.emplace(std::move(key), crs);
    return crs;
}

LasCrs FromGeoKeys(const LASFile& file) {
    const std::string directory = BytesOf(file, las::kGeoKeyDirectoryRecordId);
    if (directory.empty()) {
        return {};
    }
    return ConvertGeoKeys(directory, BytesOf(file, las::kGeoDoublesRecordId),
                          BytesOf(file, las::kGeoTextRecordId));
}

}  // namespace

LasCrs ReadLasCrs(const LASFile& file) {
    const bool isWktFirst = file.Header().HasWktBit() || !file.FindGeoKeyDirectory();
    const auto fromWkt = [&file] { return LasCrs{WktRecord(file), false}; };
    LasCrs crs = isWktFirst ? fromWkt() : FromGeoKeys(file);
    if (!crs.wkt.empty()) {
        return crs;
    }
    LasCrs other = isWktFirst ? FromGeoKeys(file) : fromWkt();
    other.isDamaged = other.wkt.empty() && (other.isDamaged || crs.isDamaged);
    return other;
}

}  // namespace orvex
