#include "raster/RasterFindings.h"

#include <algorithm>
#include <cstdint>

#include "support/Format.h"
#include "support/Text.h"

namespace orvex {
namespace {

using enum FindingSeverity;
using Findings = std::vector<Finding>;

// From this size on drawing the whole image takes long without overviews: 8192 x 8192.
constexpr std::int64_t kManyPixels = std::int64_t{1} << 26U;

const RasterBandProperties* FirstBand(const RasterProperties& properties) {
    return properties.bandDetails.empty() ? nullptr : &properties.bandDetails.front();
}

void FindCrsOddities(const RasterInspection& inspection, Findings& findings) {
    if (inspection.properties.wkt.empty()) {
        findings.push_back({Note, Text(40121_lsid)});
    } else if (inspection.crs->name.empty()) {
        findings.push_back({Warning, Text(40122_lsid)});
    }
}

void FindPlacementOddities(const RasterProperties& properties, Findings& findings) {
    if (properties.extent) {
        const auto& t = properties.transform;
        if (t && ((*t)[2] != 0 || (*t)[4] != 0)) {
            findings.push_back({Note, Text(41224_lsid)});
        }
    } else if (properties.controlPoints > 0) {
        findings.push_back({Warning, FormatText(Text(41222_lsid), {properties.controlPoints})});
    } else if (properties.hasRpc) {
        findings.push_back({Warning, Text(41223_lsid)});
    } else if (!(properties.pixelWidth > 0)) {
        findings.push_back({Warning, Text(41221_lsid)});
    }
}

void FindImageOddities(const RasterProperties& properties, Findings& findings) {
    if (properties.overviews == 0 && std::int64_t{properties.width} * properties.height >= kManyPixels) {
        findings.push_back({Note, FormatText(Text(41225_lsid), {properties.width, properties.height})});
    }
}

void FindDemOddities(const RasterInspection& inspection, Findings& findings) {
    const RasterProperties& properties = inspection.properties;
    if (properties.bands > 1) {
        findings.push_back({Warning, FormatText(Text(41226_lsid), {properties.bands})});
    }
    constexpr std::int32_t kColorModel = 2;
    constexpr std::int32_t kPaletteKind = 3;
    if (properties.colorModel == kColorModel || properties.rasterKind == kPaletteKind) {
        findings.push_back({Warning, Text(41227_lsid)});
    }
    if (const RasterBandProperties* band = FirstBand(properties)) {
        if (band->dataType.starts_with(L"C")) {
            findings.push_back({Error, Text(41228_lsid)});
        }
        if (band->dataType.starts_with(L"Float") && !band->nodata) {
            findings.push_back({Note, Text(41229_lsid)});
        }
    }
    if (!properties.wkt.empty() && inspection.crs->verticalName.empty()) {
        findings.push_back({Note, Text(41230_lsid)});
    }
}

}  // namespace

std::vector<Finding> FindRasterOddities(const RasterInspection& inspection, RasterUse use) {
    Findings findings;
    for (const std::wstring& text : inspection.properties.warnings) {
        findings.push_back({Warning, text});
    }
    FindPlacementOddities(inspection.properties, findings);
    FindCrsOddities(inspection, findings);
    if (use == RasterUse::Dem) {
        FindDemOddities(inspection, findings);
    } else {
        FindImageOddities(inspection.properties, findings);
    }
    std::ranges::stable_sort(findings, std::ranges::greater{}, &Finding::severity);
    return findings;
}

}  // namespace orvex
