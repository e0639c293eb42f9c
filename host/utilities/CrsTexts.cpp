// Coordinate reference systems: names, texts and codes.
#include <cpl_conv.h>
#include <gdal.h>

#include "host/utilities/CrsReading.h"
#include "orvexcommon/OrvexUtilities.h"
#include "support/GdalErrorScope.h"

using namespace orvex;

namespace {

/// Code of a unit: of the node that carries the CRS's axes, in the names of both generations of WKT.
long UnitCode(const OGRSpatialReference& crs, std::initializer_list<const char*> nodes) {
    for (const char* node : nodes) {
        if (const long code = EpsgCode(crs, node); code != 0) {
            return code;
        }
    }
    return 0;
}

long GeographicCode(const OGRSpatialReference& crs) {
    if (!crs.IsGeographic() && !crs.IsProjected()) {
        return 0;
    }
    OGRSpatialReference* base = crs.CloneGeogCS();
    const long code = base == nullptr ? 0 : EpsgCode(*base);
    OSRRelease(OGRSpatialReference::ToHandle(base));
    return code;
}

}  // namespace

std::string OrvexUtilities::CrsGetCRSName(const std::string& wkt) {
    const GdalErrorScope errors;
    OGRSpatialReference crs;
    if (!ImportWkt(wkt, crs)) {
        return {};
    }
    const char* name = crs.GetName();
    return name == nullptr ? "" : name;
}

std::string OrvexUtilities::CrsGetPrettyWktFromWKT(const std::string& wkt, bool wkt1) {
    const GdalErrorScope errors;
    OGRSpatialReference crs;
    if (!ImportWkt(wkt, crs)) {
        return {};
    }
    std::string pretty = wkt1 ? ExportWkt(crs, "WKT1_GDAL", true) : "";
    return pretty.empty() ? ExportWkt(crs, "WKT2_2019", true) : pretty;
}

std::string OrvexUtilities::CrsGetPrettyWktFromEPSG(int code) {
    const GdalErrorScope errors;
    OGRSpatialReference crs;
    if (code <= 0 || crs.importFromEPSG(code) != OGRERR_NONE) {
        return {};
    }
    std::string pretty = ExportWkt(crs, "WKT1_GDAL", true);
    return pretty.empty() ? ExportWkt(crs, "WKT2_2019", true) : pretty;
}

bool OrvexUtilities::CrsGetEPSGFromWKT(const std::string& wkt, long& code, long& horizontal, long& vertical,
                                       long& geographic, long& linearUnit, long& angularUnit) {
    code = horizontal = vertical = geographic = linearUnit = angularUnit = 0;
    const GdalErrorScope errors;
    OGRSpatialReference crs;
    if (!ImportWkt(wkt, crs)) {
        return false;
    }
    const OGRSpatialReference horizontalCrs = HorizontalPart(crs);
    horizontal = EpsgCode(horizontalCrs);
    code = EpsgCode(crs);
    if (code == 0) {
        code = horizontal;
    }
    if (const OGR_SRSNode* node = VerticalNode(crs); node != nullptr) {
        vertical = EpsgCode(crs, node->GetValue());
    }
    geographic = GeographicCode(horizontalCrs);
    linearUnit = UnitCode(horizontalCrs, {"PROJCS|UNIT", "LOCAL_CS|UNIT", "PROJCRS|CS|LENGTHUNIT"});
    angularUnit = UnitCode(horizontalCrs, {"GEOGCS|UNIT", "GEOGCRS|CS|ANGLEUNIT"});
    return horizontal != 0;
}

bool OrvexUtilities::SetGDALRasterCacheSize(double fraction) {
    if (!(fraction > 0 && fraction <= 1)) {
        return false;
    }
    const GIntBig memory = CPLGetUsablePhysicalRAM();
    if (memory <= 0) {
        return false;
    }
    GDALSetCacheMax64(static_cast<GIntBig>(static_cast<double>(memory) * fraction));
    return true;
}
