#include "raster/Georeference.h"

#include <ogr_spatialref.h>

#include <algorithm>
#include <cmath>
#include <optional>

#include "crs/CrsDescription.h"
#include "raster/GeoKeys.h"
#include "support/SpatialReference.h"
#include "support/Text.h"

namespace orvex {
namespace {

using Transform = std::array<double, 6>;

// GeoTIFF's code for a user-defined CRS.
constexpr std::int32_t kUserDefined = 32767;

/// WKT1, or WKT2 where WKT1 would lose part of the CRS.
std::string ExportCrs(const OGRSpatialReference& crs) {
    constexpr int kPlaneAxes = 2;
    const bool losesAxis = crs.GetAxesCount() > kPlaneAxes && crs.IsCompound() == 0;
    std::string wkt;
    if (!losesAxis && crs.IsDerivedGeographic() == 0) {
        wkt = ExportWkt(crs, "WKT1_GDAL");
    }
    return wkt.empty() ? ExportWkt(crs, "WKT2_2019") : wkt;
}

/// Name of the unit of horizontal distances; "unknown" for a geographic CRS, whatever its vertical part has.
std::wstring LinearUnit(const OGRSpatialReference& crs) {
    const char* name = nullptr;
    if (crs.IsProjected() != 0) {
        crs.GetTargetLinearUnits("PROJCS", &name);
    } else if (crs.IsGeographic() == 0) {
        crs.GetLinearUnits(&name);
    }
    return name == nullptr || *name == '\0' ? L"unknown" : FromUtf8(name);
}

void ReadCrs(GDALDatasetH dataset, RasterProperties& properties) {
    const auto* crs = OGRSpatialReference::FromHandle(GDALGetSpatialRef(dataset));
    if (crs == nullptr || crs->IsEmpty()) {
        return;
    }
    const std::string wkt = ExportCrs(*crs);
    if (wkt.empty()) {
        return;
    }
    properties.wkt = wkt;
    properties.linearUnit = LinearUnit(*crs);
    // Cached, since the files of a project share a few CRSs.
    const long code = DescribeCrs(wkt)->epsg;
    properties.projectionCode = code > 0 ? static_cast<std::int32_t>(code) : kUserDefined;
}

std::optional<std::array<double, 4>> Extent(const Transform& t, double width, double height) {
    std::array<double, 4> extent{t[0], t[3], t[0], t[3]};
    for (const auto& [column, row] :
         {std::pair(width, 0.0), std::pair(0.0, height), std::pair(width, height)}) {
        const double x = t[0] + column * t[1] + row * t[2];
        const double y = t[3] + column * t[4] + row * t[5];
        extent = {std::min(extent[0], x), std::min(extent[1], y), std::max(extent[2], x),
                  std::max(extent[3], y)};
        if (!std::isfinite(x) || !std::isfinite(y)) {
            return std::nullopt;
        }
    }
    return extent;
}

void ReadTransform(GDALDatasetH dataset, RasterProperties& properties) {
    Transform t{};
    if (GDALGetGeoTransform(dataset, t.data()) != CE_None) {
        return;
    }
    const double pixelWidth = std::hypot(t[1], t[4]);
    const double pixelHeight = std::hypot(t[2], t[5]);
    const auto extent = Extent(t, properties.width, properties.height);
    const bool isFinite = std::ranges::all_of(t, [](double number) { return std::isfinite(number); });
    if (!isFinite || !extent || !(pixelWidth > 0 && pixelHeight > 0) ||
        !std::isfinite(pixelWidth + pixelHeight)) {
        properties.warnings.push_back(Text(text::kRasterGeoreferenceInvalid));
        return;
    }
    properties.transform = t;
    properties.pixelWidth = pixelWidth;
    properties.pixelHeight = pixelHeight;
    properties.extent = extent;
}

}  // namespace

void ReadGeoreference(GDALDatasetH dataset, const GeoKeyFacts* known, RasterProperties& properties) {
    ReadTransform(dataset, properties);
    if (known != nullptr) {
        properties.wkt = known->wkt;
        properties.linearUnit = known->linearUnit;
        properties.projectionCode = known->projectionCode;
    } else {
        ReadCrs(dataset, properties);
    }
    properties.controlPoints = GDALGetGCPCount(dataset);
    properties.hasRpc = GDALGetMetadata(dataset, "RPC") != nullptr;
}

std::wstring RasterUnitText(const std::wstring& reported) {
    const std::wstring shown = ToUpper(reported).find(L"MET") == std::wstring::npos ? reported : L"Meters";
    return shown.find(Text(text::kUnknownUnitWord)) == std::wstring::npos ? shown : Text(text::kUnknown);
}

}  // namespace orvex
