#include "raster/RasterDrivers.h"

#include <gdal.h>

#include <algorithm>
#include <iterator>
#include <mutex>
#include <string_view>

namespace orvex {
namespace {

/// Drivers that never open a listed file.
constexpr std::string_view kLeftOut[] = {
    // Files of these name a server, which is asked while the file is opened.
    "DAAS", "EEDAI", "HTTP", "NGW", "OGCAPI", "PLMOSAIC", "PLSCENES", "STACIT", "STACTA", "WCS", "WMS",
    "WMTS", "KMLSUPEROVERLAY",
    // No files of their own, or no rasters in them.
    "CAD", "DERIVED", "GeoRaster", "MEM", "PostGISRaster",
    // The database library under them may leave journals beside the file.
    "GPKG", "MBTiles", "Rasterlite",
    // They read the file to its end, or decode it, before they know its size.
    "XPM", "XYZ"};

bool MayOpen(GDALDriverH driver) {
    return GDALGetMetadataItem(driver, GDAL_DCAP_RASTER, nullptr) != nullptr &&
           GDALGetMetadataItem(driver, GDAL_DCAP_OPEN, nullptr) != nullptr &&
           std::ranges::find(kLeftOut, std::string_view(GDALGetDriverShortName(driver))) ==
               std::ranges::end(kLeftOut);
}

}  // namespace

GdalList::GdalList(std::vector<std::string> texts) : texts_(std::move(texts)) {
    pointers_.reserve(texts_.size() + 1);
    std::ranges::transform(texts_, std::back_inserter(pointers_), &std::string::c_str);
    pointers_.push_back(nullptr);
}

GdalListPtr RasterDrivers() {
    static std::mutex lock;
    static GdalListPtr drivers;
    static int registered = -1;
    const std::lock_guard guard(lock);
    // The host may register drivers of its own at any time.
    if (const int count = GDALGetDriverCount(); count != registered) {
        std::vector<std::string> names;
        for (int i = 0; i < count; ++i) {
            if (GDALDriverH driver = GDALGetDriver(i); MayOpen(driver)) {
                names.emplace_back(GDALGetDriverShortName(driver));
            }
        }
        drivers = std::make_shared<const GdalList>(std::move(names));
        registered = count;
    }
    return drivers;
}

}  // namespace orvex
