#include "crs/CrsDescription.h"

#include <cpl_conv.h>
#include <ogr_spatialref.h>

#include "crs/CrsCache.h"
#include "crs/GdalSetup.h"
#include "orvexcommon/OrvexUtilities.h"
#include "support/GdalErrorScope.h"
#include "support/LDataError.h"
#include "support/Log.h"
#include "support/Text.h"

namespace orvex {
namespace {

constexpr std::size_t kDescriptionsKept = 512;
constexpr char kWktFormatOption[] = "OSR_WKT_FORMAT";
constexpr char kDefaultWkt[] =
    R"wkt(COMPD_CS["WGS 84 + EGM96 height (Meters)",GEOGCS["WGS 84",DATUM["WGS_1984",SPHEROID["WGS 84",6378137,298.257223563,AUTHORITY["EPSG","7030"]],AUTHORITY["EPSG","6326"]],PRIMEM["Greenwich",0,AUTHORITY["EPSG","8901"]],UNIT["degree",0.0174532925199433,AUTHORITY["EPSG","9122"]],AXIS["Latitude",NORTH],AXIS["Longitude",EAST],AUTHORITY["EPSG","4326"]],VERT_CS["EGM96 height (Meters)",VERT_DATUM["EGM96 geoid",2005,AUTHORITY["EPSG","5171"]],UNIT["metre",1,AUTHORITY["EPSG","9001"]],AXIS["Gravity-related height",UP],AUTHORITY["EPSG","5773"]]])wkt";
static_assert(sizeof(kDefaultWkt) - 1 == 534);

/// A CRS that GDAL parses but cannot fully validate (corrupt data, unsupported) is shown all the same.
bool IsAccepted(OGRErr validation) {
    return validation == OGRERR_NONE || validation == OGRERR_CORRUPT_DATA ||
           validation == OGRERR_UNSUPPORTED_SRS;
}

std::wstring UnitText(const char* name) {
    const std::wstring unit = FromUtf8(name == nullptr ? "" : name);
    return unit.empty() || EqualNoCase(unit, L"unknown") ? L"Unknown" : unit;
}

std::string ExportPretty(const OGRSpatialReference& crs) {
    char* text = nullptr;
    crs.exportToPrettyWkt(&text, FALSE);
    std::string pretty = text == nullptr ? "" : text;
    CPLFree(text);
    return pretty;
}

/// WKT1 where the CRS can be expressed in it, else WKT2. Changes an option of the whole process, which is
/// left at "WKT1"; CrsCache runs one description at a time.
std::string PrettyWkt(const OGRSpatialReference& crs) {
    // Set for each description, so that its text does not depend on those before it.
    CPLSetConfigOption(kWktFormatOption, "WKT1");
    std::string pretty = ExportPretty(crs);
    if (pretty.empty()) {
        CPLSetConfigOption(kWktFormatOption, "WKT2");
        pretty = ExportPretty(crs);
        CPLSetConfigOption(kWktFormatOption, "WKT1");
    }
    return pretty;
}

std::wstring WithCrLf(const std::string& text) {
    std::string lines;
    lines.reserve(text.size() + text.size() / 16);
    for (const char letter : text) {
        lines += letter == '\n' ? "\r\n" : std::string_view(&letter, 1);
    }
    return FromUtf8(lines);
}

std::wstring VerticalName(const OGRSpatialReference& crs) {
    for (const char* node : {"VERT_CS", "VERTCRS"}) {
        if (const char* name = crs.GetAttrValue(node); name != nullptr) {
            return FromUtf8(name);
        }
    }
    return {};
}

/// Fills the EPSG code and the name of the vertical part.
void AddCodes(const OGRSpatialReference& crs, CrsDescription& description) {
    description.verticalName = VerticalName(crs);
    long others[5] = {};
    OrvexUtilities::CrsGetEPSGFromWKT(description.sourceWkt, description.epsg, others[0], others[1],
                                      others[2], others[3], others[4]);
}

void Fill(CrsDescription& description) {
    const GdalErrorScope errors;
    OGRSpatialReference crs;
    crs.Clear();
    crs.importFromWkt(description.sourceWkt.c_str());
    if (IsAccepted(crs.Validate())) {
        description.isGeographic = crs.IsGeographic() != 0;
        description.name = FromUtf8(OrvexUtilities::CrsGetCRSName(description.sourceWkt));
    }
    const char* unit = nullptr;
    crs.GetLinearUnits(&unit);
    description.linearUnits = UnitText(unit);
    unit = nullptr;
    crs.GetAngularUnits(&unit);
    description.angularUnits = UnitText(unit);
    description.prettyWkt = WithCrLf(PrettyWkt(crs));
    AddCodes(crs, description);
}

CrsPtr Describe(const std::string& wkt) {
    auto description = std::make_shared<CrsDescription>();
    description->sourceWkt = wkt;
    if (!wkt.empty()) {
        EnsureGdal();  // the group is looked up in PROJ's database, which lies beside the component
    }
    description->compatibilityGroup = OrvexUtilities::GetCompatibilityGroup(wkt);
    if (!wkt.empty()) {
        Fill(*description);
    }
    return description;
}

CrsPtr MakeDefaultCrs() {
    const GdalErrorScope errors;
    auto description = std::make_shared<CrsDescription>();
    description->sourceWkt = kDefaultWkt;
    description->name = FromUtf8(OrvexUtilities::CrsGetCRSName(kDefaultWkt));
    description->isGeographic = true;
    description->linearUnits = L"Meters";
    description->angularUnits = L"Degrees";
    description->prettyWkt = WithCrLf(OrvexUtilities::CrsGetPrettyWktFromWKT(kDefaultWkt, true));
    description->compatibilityGroup = OrvexUtilities::GetCompatibilityGroup(kDefaultWkt);
    OGRSpatialReference crs;
    crs.importFromWkt(kDefaultWkt);
    AddCodes(crs, *description);
    return description;
}

}  // namespace

CrsPtr DescribeCrs(const std::string& wkt) {
    // Never destroyed: a worker may still ask while the process ends.
    static auto* const cache = new CrsCache(kDescriptionsKept, Describe);
    static const CrsPtr none = std::make_shared<CrsDescription>();
    try {
        return cache->Get(wkt);
    } catch (...) {
        LogWarning(L"A CRS could not be described: " + CurrentExceptionText());
        return none;
    }
}

CrsPtr DescribeDefaultCrs() {
    static const CrsPtr description = MakeDefaultCrs();
    return description;
}

}  // namespace orvex
