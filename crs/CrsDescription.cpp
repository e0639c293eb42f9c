#include "crs/CrsDescription.h"

#include <cpl_conv.h>
#include <ogr_spatialref.h>

#include <algorithm>

#include "crs/GdalSetup.h"
#include "orvexcommon/OrvexUtilities.h"
#include "support/GdalErrorScope.h"
#include "support/LDataError.h"
#include "support/Log.h"
#include "support/SpatialReference.h"
#include "support/Text.h"
#include "support/TextCache.h"

namespace orvex {
namespace {

constexpr std::size_t kDescriptionsKept = 512;
// Texts of so many bytes; their descriptions take some ten times as much.
constexpr std::size_t kTextKept = std::size_t{4} << 20U;
// The longest WKTs of the EPSG database have some ten thousand characters.
constexpr std::size_t kLongestWkt = std::size_t{1} << 20U;
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

/// WKT1 where the CRS can be expressed in it, else WKT2; hosts then find the process's format at "WKT1".
std::string PrettyWkt(const OGRSpatialReference& crs) {
    std::string pretty = ExportWkt(crs, "WKT1_GDAL", true);
    if (pretty.empty()) {
        pretty = ExportWkt(crs, "WKT2_2019", true);
        CPLSetConfigOption("OSR_WKT_FORMAT", "WKT1");
    }
    return pretty;
}

/// The first line of what GDAL reports first; the lines behind it repeat the text.
std::wstring ProblemText(const GdalErrorScope& errors) {
    constexpr std::size_t kLongest = 200;
    const std::string first = errors.Messages().empty() ? std::string() : errors.Messages().front();
    const std::wstring text = FromUtf8(first.substr(0, std::min(first.find('\n'), kLongest)));
    return text.empty() ? Text(text::kWktNotUnderstood) : text;
}

std::wstring WithCrLf(const std::string& text) {
    std::string lines;
    lines.reserve(text.size() + text.size() / 16);
    for (const char letter : text) {
        lines += letter == '\n' ? "\r\n" : std::string_view(&letter, 1);
    }
    return FromUtf8(lines);
}

/// The name that the CRS states; that of the code where it states none.
std::wstring VerticalName(const char* stated, long epsg) {
    const std::wstring name = FromUtf8(stated);
    OGRSpatialReference known;
    const bool isNamed = !name.empty() && !EqualNoCase(name, L"unknown") && !EqualNoCase(name, L"unnamed");
    return isNamed || epsg == 0 || known.importFromEPSG(static_cast<int>(epsg)) != OGRERR_NONE
               ? name
               : FromUtf8(known.GetName());
}

void AddVerticalPart(const OGRSpatialReference& crs, CrsDescription& description) {
    for (const char* node : {"VERT_CS", "VERTCRS"}) {
        if (const char* name = crs.GetAttrValue(node); name != nullptr) {
            description.verticalName = VerticalName(name, description.verticalEpsg);
            const char* unit = nullptr;
            crs.GetTargetLinearUnits(node, &unit);
            description.verticalUnits = UnitText(unit);
            return;
        }
    }
}

/// Fills the EPSG codes and the vertical part.
void AddCodes(const OGRSpatialReference& crs, CrsDescription& description) {
    long others[4] = {};
    OrvexUtilities::CrsGetEPSGFromWKT(description.sourceWkt, description.epsg, others[0],
                                      description.verticalEpsg, others[1], others[2], others[3]);
    AddVerticalPart(crs, description);
}

void Fill(CrsDescription& description) {
    const GdalErrorScope errors;
    OGRSpatialReference crs;
    crs.Clear();
    const bool isTooLong = description.sourceWkt.size() > kLongestWkt;
    const bool isRead = !isTooLong && crs.importFromWkt(description.sourceWkt.c_str()) == OGRERR_NONE;
    if (isRead && IsAccepted(crs.Validate())) {
        description.isGeographic = crs.IsGeographic() != 0;
        description.name = FromUtf8(OrvexUtilities::CrsGetCRSName(description.sourceWkt));
    } else {
        description.problem = isTooLong ? Text(text::kWktTooLong) : ProblemText(errors);
    }
    const char* unit = nullptr;
    crs.GetLinearUnits(&unit);
    description.linearUnits = UnitText(unit);
    unit = nullptr;
    crs.GetAngularUnits(&unit);
    description.angularUnits = UnitText(unit);
    description.prettyWkt = WithCrLf(PrettyWkt(crs));
    AddCodes(crs, description);
    description.area = FindAreaOfUse(crs, description.epsg);
}

CrsPtr Describe(std::string_view wkt) {
    auto description = std::make_shared<CrsDescription>();
    description->sourceWkt = wkt;
    if (!wkt.empty()) {
        EnsureGdal();  // codes are looked up in PROJ's database, which lies beside the component
        Fill(*description);
    }
    if (wkt.empty() || description->epsg != 0 || !description->problem.empty()) {
        description->Identify();  // nothing has to be searched for
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
    OGRSpatialReference crs;
    crs.importFromWkt(kDefaultWkt);
    AddCodes(crs, *description);
    description->Identify();
    return description;
}

}  // namespace

const CrsIdentity& LazyCrsIdentity::Get(const std::string& wkt) const {
    std::call_once(once_, [&] {
        identity_.group = OrvexUtilities::GetCompatibilityGroup(wkt, identity_.epsg);
        isKnown_ = true;
    });
    return identity_;
}

long CrsDescription::Epsg() const {
    const CrsIdentity* const known = identity.Known();
    return epsg != 0 || known == nullptr ? epsg : known->epsg;
}

CrsPtr DescribeCrs(std::string_view wkt) {
    // Never destroyed: a worker may still ask while the process ends.
    static auto* const cache = new TextCache<CrsPtr>(kDescriptionsKept, kTextKept);
    static const CrsPtr none = std::make_shared<CrsDescription>();
    try {
        return cache->Get(wkt, [wkt] { return Describe(wkt); });
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
