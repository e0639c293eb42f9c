#include "host/dem/DemCrs.h"

#include <optional>
#include <string_view>

#include "host/dem/GeoKeyEncoder.h"
#include "host/dem/LasHeaderWriter.h"
#include "orvexcommon/OrvexUtilities.h"
#include "support/Format.h"
#include "support/GdalErrorScope.h"
#include "support/LasFormat.h"
#include "support/SpatialReference.h"
#include "support/Text.h"

namespace orvex {
namespace {

constexpr int kFirstWktVersion = 4;

/// WKT1 is what LAS 1.4 names; some CRSs exist in WKT2 only.
std::string WktOf(const OGRSpatialReference& crs) {
    std::string wkt = ExportWkt(crs, "WKT1_GDAL");
    return wkt.empty() ? ExportWkt(crs, "WKT2_2019") : wkt;
}

std::optional<DemCrsRecords> WithGeoKeys(const OGRSpatialReference& crs, const std::string& wkt,
                                         int minorVersion) {
    const auto keys = EncodeGeoKeys(crs);
    if (!keys) {
        return std::nullopt;
    }
    DemCrsRecords result;
    std::string reason;
    result.wkt = OrvexUtilities::CrsWktFromGeoKeys(keys->directory, keys->doubles, keys->text, reason);
    // Keys say no more than the parts that they have numbers for.
    if (result.wkt.empty() ||
        OrvexUtilities::GetCompatibilityGroup(result.wkt) != OrvexUtilities::GetCompatibilityGroup(wkt)) {
        return std::nullopt;
    }
    const auto add = [&](std::uint16_t id, std::string_view description, const std::string& data) {
        if (!data.empty()) {
            result.records.push_back(
                LasRecordBytes(minorVersion, las::kProjectionUserId, id, description, data));
        }
    };
    add(las::kGeoKeyDirectoryRecordId, las::kGeoKeyDirectoryDescription, keys->directory);
    add(las::kGeoDoublesRecordId, "GeoTiff GeoDoubleParamsTag", keys->doubles);
    add(las::kGeoTextRecordId, "GeoTiff GeoAsciiParamsTag", keys->text);
    return result;
}

DemCrsRecords WithWkt(const std::string& wkt, int minorVersion, const std::wstring& demPath) {
    DemCrsRecords result;
    result.isWkt = true;
    // The text ends with a zero.
    if (wkt.empty() || wkt.size() >= las::kMostVlrData) {
        result.warnings.push_back(FormatText(Text(41392_lsid), {demPath}));
        return result;
    }
    result.wkt = wkt;
    result.records.push_back(LasRecordBytes(minorVersion, las::kProjectionUserId, las::kWktRecordId,
                                            las::kWktDescription, wkt + '\0'));
    return result;
}

}  // namespace

DemCrsRecords MakeCrsRecords(const OGRSpatialReference& crs, int minorVersion, int pointFormat,
                             const std::wstring& demPath) {
    const GdalErrorScope errors;
    const std::string wkt = WktOf(crs);
    if (pointFormat < las::kFirstExtendedFormat) {
        if (auto keys = WithGeoKeys(crs, wkt, minorVersion)) {
            return *std::move(keys);
        }
        if (minorVersion < kFirstWktVersion) {
            DemCrsRecords none;
            none.warnings.push_back(FormatText(Text(41391_lsid), {demPath, minorVersion}));
            return none;
        }
    }
    return WithWkt(wkt, minorVersion, demPath);
}

}  // namespace orvex
