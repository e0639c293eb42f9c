// Coordinate reference systems: names, texts and codes.
#include <cpl_conv.h>
#include <gdal.h>

#include <atomic>
#include <cstdlib>

#include "host/utilities/CadReader.h"
#include "host/utilities/CrsReading.h"
#include "orvexcommon/OrvexUtilities.h"
#include "support/GdalErrorScope.h"
#include "support/SpatialReference.h"

using namespace orvex;

namespace {

/// Code of the unit of the CRS's first axes ("PROJCS|UNIT"); taken from PROJ's database where the text gives
/// only the code of the CRS, as WKT2 does.
long UnitCode(const OGRSpatialReference& crs, const char* node) {
    if (const long code = EpsgCode(crs, node); code != 0) {
        return code;
    }
    const long known = EpsgCode(crs);
    OGRSpatialReference full;
    return ImportEpsg(known, full) ? EpsgCode(full, node) : 0;
}

/// Size of the cache as it was set here last; 0 while it was not.
std::atomic<GIntBig> cacheSizeSet = 0;

/// GDAL does not tell, so any size counts that is neither its own default nor ours.
bool HasHostSetCacheSize(GIntBig memory) {
    constexpr double kDefaultFraction = 0.05;
    const GIntBig now = GDALGetCacheMax64();
    const auto defaultSize = static_cast<GIntBig>(static_cast<double>(memory) * kDefaultFraction);
    return CPLGetConfigOption("GDAL_CACHEMAX", nullptr) != nullptr ||
           (now != cacheSizeSet && std::abs(now - defaultSize) > 1);
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
    if (!ImportEpsg(code, crs)) {
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
    const OGRSpatialReference full = WithCodedParts(crs);
    const OGRSpatialReference horizontalCrs = HorizontalPart(full);
    horizontal = EpsgCode(horizontalCrs);
    code = EpsgCode(crs);
    if (code == 0) {
        code = horizontal;
    }
    if (const OGR_SRSNode* node = VerticalNode(full); node != nullptr) {
        vertical = EpsgCode(full, node->GetValue());
    }
    geographic = EpsgCode(GeographicPart(horizontalCrs));
    linearUnit = UnitCode(horizontalCrs, horizontalCrs.IsLocal() ? "LOCAL_CS|UNIT" : "PROJCS|UNIT");
    angularUnit = UnitCode(horizontalCrs, "GEOGCS|UNIT");
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
    PrepareGdalReading();
    if (!HasHostSetCacheSize(memory)) {
        cacheSizeSet = static_cast<GIntBig>(static_cast<double>(memory) * fraction);
        GDALSetCacheMax64(cacheSizeSet);
    }
    return true;
}
