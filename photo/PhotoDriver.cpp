#include "photo/PhotoDriver.h"

#include <gdal.h>

#include <array>
#include <cmath>

#include "crs/GdalSetup.h"
#include "support/Files.h"
#include "support/GdalAccess.h"
#include "support/GdalErrorScope.h"
#include "support/GdalRaii.h"
#include "support/Text.h"

namespace orvex {
namespace {

constexpr const char* kDrivers[] = {"ECW",         "EHdr",  "HFA", "JP2ECW", "JP2MrSID",
                                    "JP2OpenJPEG", "MrSID", "SGI", nullptr};

std::uint32_t Whole(int number) {
    return number > 0 ? static_cast<std::uint32_t>(number) : 0;
}

PhotoImage Describe(GDALDatasetH dataset) {
    PhotoImage image;
    image.fileType = FromUtf8(GDALGetDriverShortName(GDALGetDatasetDriver(dataset)));
    image.width = Whole(GDALGetRasterXSize(dataset));
    image.height = Whole(GDALGetRasterYSize(dataset));
    image.bands = Whole(GDALGetRasterCount(dataset));
    if (image.bands != 0) {
        GDALRasterBandH band = GDALGetRasterBand(dataset, 1);
        image.bitsPerBand = Whole(GDALGetDataTypeSizeBits(GDALGetRasterDataType(band)));
        image.overviews = Whole(GDALGetOverviewCount(band));
    }
    std::array<double, 6> transform{};
    if (GDALGetGeoTransform(dataset, transform.data()) == CE_None) {
        image.pixelWidth = std::hypot(transform[1], transform[4]);
        image.pixelHeight = std::hypot(transform[2], transform[5]);
    }
    return image;
}

}  // namespace

std::optional<PhotoImage> ReadImageWithDriver(const std::wstring& path) {
    if (KindOf(path) != FileKind::File || !EnsureGdal()) {
        return std::nullopt;
    }
    const GdalErrorScope errors;
    const GdalAccess access(AbsolutePath(path));
    const GdalDataset dataset(
        GDALOpenEx(access.Name().c_str(), GDAL_OF_RASTER | GDAL_OF_READONLY, kDrivers, nullptr, nullptr));
    return dataset ? std::optional(Describe(dataset.get())) : std::nullopt;
}

}  // namespace orvex
