// Which LAS files can lie in one layer.
#include <cpl_conv.h>

#include <cctype>
#include <charconv>
#include <functional>
#include <set>
#include <string_view>

#include "host/utilities/CrsReading.h"
#include "orvexcommon/OrvexUtilities.h"
#include "support/GdalErrorScope.h"
#include "support/SpatialReference.h"
#include "support/TextCache.h"

using namespace orvex;

namespace {

// From this confidence on a CRS of PROJ's database is the same CRS, at most under another name.
constexpr int kSameCrs = 90;

/// A number as the group writes it. The foot and the US survey foot differ in the sixth digit; writers of CRS
/// texts round from the tenth on.
std::string NumberText(double number) {
    char buffer[32];
    const auto result = std::to_chars(buffer, buffer + sizeof(buffer), number, std::chars_format::general, 9);
    return {buffer, result.ptr};
}

std::string AuthorityText(const char* authority, const char* code) {
    return authority == nullptr || code == nullptr ? std::string() : std::string(authority) + ":" + code;
}

/// PROJ is that sure only where the names agree as well; without a name it searches its whole database, for
/// seconds and in vain. So it does for a CRS with a datum shift of its own, which is none of the database's
/// anyway.
bool CanBeFound(const OGRSpatialReference& crs) {
    const std::string_view name = crs.GetName() == nullptr ? "" : crs.GetName();
    double shift[7] = {};
    return !name.empty() && name != "unnamed" && name != "unknown" && crs.GetTOWGS84(shift, 7) != OGRERR_NONE;
}

/// The code of the same CRS in PROJ's database; empty when there is none.
std::string SearchCode(const OGRSpatialReference& crs) {
    int count = 0;
    int* confidences = nullptr;
    OGRSpatialReferenceH* matches = crs.FindMatches(nullptr, &count, &confidences);
    std::string code;
    // The best match comes first.
    if (count > 0 && confidences[0] >= kSameCrs) {
        const auto* match = OGRSpatialReference::FromHandle(matches[0]);
        code = AuthorityText(match->GetAuthorityName(nullptr), match->GetAuthorityCode(nullptr));
    }
    OSRFreeSRSArray(matches);
    CPLFree(confidences);
    return code;
}

/// The same for a CRS that comes without a code. The search takes a tenth of a second, and is made once for
/// each CRS.
std::string FindCode(const OGRSpatialReference& crs) {
    constexpr std::size_t kCodesKept = 512;
    constexpr std::size_t kTextKept = std::size_t{4} << 20U;
    // Never destroyed: a thread may still ask while the process ends.
    static auto* const cache = new TextCache<std::string>(kCodesKept, kTextKept);
    return CanBeFound(crs) ? cache->Get(ExportWkt(crs, "WKT2_2019"), [&crs] { return SearchCode(crs); })
                           : std::string();
}

/// A WKT with its numbers rounded (those outside of quotes) and, unless it is the CRS's identity, without the
/// name that its writer chose.
std::string NormalizedWkt(const OGRSpatialReference& crs, bool nameIsIdentity) {
    std::string wkt = ExportWkt(crs, "WKT1_SIMPLE");
    if (wkt.empty()) {
        wkt = ExportWkt(crs, "WKT2_2019");
    }
    std::string text;
    std::size_t quotes = 0;
    for (std::size_t i = 0; i < wkt.size();) {
        double number = 0;
        const bool inQuotes = quotes % 2 == 1;
        const auto [end, error] = std::from_chars(wkt.data() + i, wkt.data() + wkt.size(), number);
        const bool afterComma = i > 0 && wkt[i - 1] == ',';
        if (!inQuotes && afterComma && error == std::errc()) {
            text += NumberText(number);
            i = static_cast<std::size_t>(end - wkt.data());
            continue;
        }
        if (nameIsIdentity || quotes != 1 || wkt[i] == '"') {
            text += wkt[i];
        }
        quotes += wkt[i] == '"' ? 1 : 0;
        ++i;
    }
    return text;
}

/// The code that a CRS without a vertical part has or can be given ("EPSG:25832"); empty when there is none.
std::string CodeText(const OGRSpatialReference& crs) {
    std::string code = AuthorityText(crs.GetAuthorityName(nullptr), crs.GetAuthorityCode(nullptr));
    return code.empty() && (crs.IsGeographic() || crs.IsProjected()) ? FindCode(crs) : code;
}

/// The EPSG code in such a text; 0 when it is empty or another authority's.
long EpsgCodeOf(std::string_view text) {
    constexpr std::string_view kEpsg = "EPSG:";
    long code = 0;
    if (text.starts_with(kEpsg)) {
        std::from_chars(text.data() + kEpsg.size(), text.data() + text.size(), code);
    }
    return code;
}

std::string HorizontalText(const OGRSpatialReference& crs, std::string identity);

/// Method, parameters in an order of their own, and the geographic CRS below.
std::string ProjectionText(const OGRSpatialReference& crs) {
    const OGR_SRSNode* node = crs.GetAttrNode("PROJCS");
    const char* method = crs.GetAttrValue("PROJECTION");
    if (node == nullptr || method == nullptr) {
        return NormalizedWkt(crs, false);
    }
    std::set<std::string> parameters;
    for (int i = 0; i < node->GetChildCount(); ++i) {
        const OGR_SRSNode* child = node->GetChild(i);
        if (EQUAL(child->GetValue(), "PARAMETER") && child->GetChildCount() == 2) {
            parameters.insert(std::string(child->GetChild(0)->GetValue()) + "=" +
                              NumberText(CPLAtof(child->GetChild(1)->GetValue())));
        }
    }
    std::string text = method;
    for (const std::string& parameter : parameters) {
        text += " " + parameter;
    }
    const OGRSpatialReference base = GeographicPart(crs);
    return text + " on " + HorizontalText(base, CodeText(base));
}

/// A CRS without a vertical part: its code, else its definition.
std::string HorizontalText(const OGRSpatialReference& crs, std::string identity) {
    if (crs.IsEmpty()) {
        return "none";
    }
    if (identity.empty()) {
        identity = crs.IsProjected() ? ProjectionText(crs) : NormalizedWkt(crs, crs.IsLocal() != 0);
    }
    const double unit = crs.IsGeographic() ? crs.GetAngularUnits() : crs.GetLinearUnits();
    return identity + " unit " + NumberText(unit);
}

/// Letters and digits of a name in upper case: writers differ in the rest.
std::string PlainName(std::string_view name) {
    std::string plain;
    for (const char letter : name) {
        if (std::isalnum(static_cast<unsigned char>(letter)) != 0) {
            plain += static_cast<char>(std::toupper(static_cast<unsigned char>(letter)));
        }
    }
    return plain;
}

/// Name and unit: the name of PROJ's database where there is a code, so that texts with and without meet.
std::string VerticalText(const OGRSpatialReference& crs) {
    const OGR_SRSNode* node = VerticalNode(crs);
    if (node == nullptr || node->GetChildCount() == 0) {
        return "none";
    }
    std::string name = PlainName(node->GetChild(0)->GetValue());
    OGRSpatialReference known;
    const long code = EpsgCode(crs, node->GetValue());
    if (ImportEpsg(code, known)) {
        name = PlainName(known.GetName());
    }
    return name + " unit " + NumberText(crs.GetTargetLinearUnits(node->GetValue()));
}

}  // namespace

std::string OrvexUtilities::GetCompatibilityGroup(const std::string& wkt) {
    long code = 0;
    return GetCompatibilityGroup(wkt, code);
}

std::string OrvexUtilities::GetCompatibilityGroup(const std::string& wkt, long& code) {
    code = 0;
    const std::string_view text(wkt.c_str());
    if (text.find_first_not_of(" \t\r\n") == std::string_view::npos) {
        return "no CRS";
    }
    const GdalErrorScope errors;
    OGRSpatialReference crs;
    if (!ImportWkt(wkt, crs)) {
        // Files with the same unreadable text were made alike; the text may be long.
        return "unreadable " + std::to_string(text.size()) + " " +
               std::to_string(std::hash<std::string_view>()(text));
    }
    crs = WithCodedParts(crs);
    OGRSpatialReference horizontal = HorizontalPart(crs);
    // A shift to WGS 84 that one writer adds does not make another CRS.
    horizontal.StripTOWGS84IfKnownDatum();
    const std::string identity = CodeText(horizontal);
    code = EpsgCodeOf(identity);
    return HorizontalText(horizontal, identity) + ", vertical " + VerticalText(crs);
}
