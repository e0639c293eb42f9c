#include "las/LasCrs.h"

#include <algorithm>

#include "crs/CrsDescription.h"
#include "crs/GdalSetup.h"
#include "las/LASFile.h"
#include "orvexcommon/OrvexUtilities.h"
#include "support/Format.h"
#include "support/Text.h"
#include "support/TextCache.h"

namespace orvex {
namespace {

constexpr std::size_t kConversionsKept = 256;
constexpr std::size_t kBytesKept = std::size_t{4} << 20U;

std::string_view BytesOf(const LASFile& file, std::uint16_t recordId, std::size_t most) {
    const auto data = file.FindProjectionRecord(recordId);
    return data ? std::string_view(reinterpret_cast<const char*>(data->data()), std::min(data->size(), most))
                : std::string_view();
}

// The text ends at its first zero byte; some writers pad it with blanks or line breaks.
std::string_view WktRecord(const LASFile& file) {
    const std::string_view text = BytesOf(file, las::kWktRecordId, kMostRecordData);
    const std::string_view whole = text.substr(0, text.find('\0'));
    return whole.substr(0, whole.find_last_not_of(" \t\r\n") + 1);
}

LasCrs FromWkt(const LASFile& file) {
    const std::string_view wkt = WktRecord(file);
    if (wkt.empty()) {
        return {};
    }
    CrsPtr crs = DescribeCrs(wkt);
    if (crs->problem.empty()) {
        return {std::move(crs), LasCrsSource::Wkt, {}, {}};
    }
    return {{}, LasCrsSource::None, FormatText(Text(text::kWktUnreadable), {crs->problem}), std::string(wkt)};
}

using GeoRecords = std::array<std::string, 3>;

// The payloads of the three records behind each other, each with its length before it.
std::string Joined(const GeoRecords& payloads) {
    std::string joined;
    for (const std::string& payload : payloads) {
        joined += std::to_string(payload.size()) + ' ' + payload;
    }
    return joined;
}

LasCrs ConvertGeoKeys(const GeoRecords& payloads) {
    EnsureGdal();
    std::string reason;
    const std::string wkt = OrvexUtilities::CrsWktFromGeoKeys(payloads[0], payloads[1], payloads[2], reason);
    return wkt.empty() ? LasCrs{{}, LasCrsSource::None, FromUtf8(reason), {}}
                       : LasCrs{DescribeCrs(wkt), LasCrsSource::GeoKeys, FromUtf8(reason), {}};
}

LasCrs FromGeoKeys(const LASFile& file) {
    // The tiles of a folder share a few CRSs, and a conversion takes far longer than reading a header. Never
    // destroyed: a worker may still ask while the process ends.
    static auto* const cache = new TextCache<LasCrs>(kConversionsKept, kBytesKept);
    const GeoRecords payloads{std::string(BytesOf(file, las::kGeoKeyDirectoryRecordId, las::kMostVlrData)),
                              std::string(BytesOf(file, las::kGeoDoublesRecordId, las::kMostVlrData)),
                              std::string(BytesOf(file, las::kGeoTextRecordId, las::kMostVlrData))};
    if (payloads.front().empty()) {
        return {};
    }
    return cache->Get(Joined(payloads), [&payloads] { return ConvertGeoKeys(payloads); });
}

}  // namespace

LasCrs ReadLasCrs(const LASFile& file) {
    const bool isWktFirst = file.Header().HasWktBit() || !file.FindGeoKeyDirectory();
    LasCrs crs = isWktFirst ? FromWkt(file) : FromGeoKeys(file);
    if (crs.crs) {
        return crs;
    }
    LasCrs other = isWktFirst ? FromGeoKeys(file) : FromWkt(file);
    other.problem = crs.problem + (crs.problem.empty() || other.problem.empty() ? L"" : L" ") + other.problem;
    other.unreadableWkt += crs.unreadableWkt;
    return other;
}

}  // namespace orvex
