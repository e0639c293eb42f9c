#include "host/utilities/CrsReading.h"

#include <charconv>
#include <limits>
#include <mutex>
#include <string_view>

#include "support/Environment.h"
#include "support/SpatialReference.h"

namespace orvex {
namespace {

// The longest WKTs of the EPSG database have some ten thousand characters.
constexpr std::size_t kMaxWktLength = 1 << 20;

/// Hosts read coordinate systems before any dialog has set GDAL up, and not every system has data of PROJ's
/// to find.
void FindProjData() {
    static std::once_flag once;
    std::call_once(once, [] { PreferProjData(DataFolder() / "proj"); });
}

}  // namespace

bool ImportWkt(const std::string& wkt, OGRSpatialReference& crs) {
    FindProjData();
    return !wkt.empty() && wkt.size() <= kMaxWktLength && crs.importFromWkt(wkt.c_str()) == OGRERR_NONE;
}

bool ImportEpsg(long code, OGRSpatialReference& crs) {
    FindProjData();
    return code > 0 && code <= std::numeric_limits<int>::max() &&
           crs.importFromEPSG(static_cast<int>(code)) == OGRERR_NONE;
}

OGRSpatialReference WithCodedParts(const OGRSpatialReference& crs) {
    const long code = crs.IsCompound() ? EpsgCode(crs) : 0;
    OGRSpatialReference known;
    return ImportEpsg(code, known) ? known : crs;
}

OGRSpatialReference HorizontalPart(const OGRSpatialReference& crs) {
    if (crs.IsVertical() && !crs.IsCompound()) {
        return OGRSpatialReference();
    }
    OGRSpatialReference part(crs);
    if (part.IsCompound()) {
        part.StripVertical();
    }
    return part;
}

OGRSpatialReference GeographicPart(const OGRSpatialReference& crs) {
    if (!crs.IsGeographic() && !crs.IsProjected()) {
        return OGRSpatialReference();
    }
    OGRSpatialReference* clone = crs.CloneGeogCS();
    OGRSpatialReference part;
    if (clone != nullptr) {
        part = *clone;
        clone->Release();
    }
    return part;
}

const OGR_SRSNode* VerticalNode(const OGRSpatialReference& crs) {
    for (const char* name : {"VERT_CS", "VERTCRS", "VERTICALCRS"}) {
        if (const OGR_SRSNode* node = crs.GetAttrNode(name); node != nullptr) {
            return node;
        }
    }
    return nullptr;
}

long EpsgCode(const OGRSpatialReference& crs, const char* node) {
    const char* authority = crs.GetAuthorityName(node);
    const char* text = crs.GetAuthorityCode(node);
    if (authority == nullptr || text == nullptr || std::string_view(authority) != "EPSG") {
        return 0;
    }
    const std::string_view digits(text);
    long code = 0;
    const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), code);
    return error == std::errc() && end == digits.data() + digits.size() && code > 0 &&
                   code <= std::numeric_limits<int>::max()
               ? code
               : 0;
}

}  // namespace orvex
