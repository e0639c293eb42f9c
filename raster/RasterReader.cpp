#include "raster/RasterReader.h"

#include <utility>

#include "crs/GdalOption.h"
#include "crs/NoNetwork.h"
#include "raster/RasterBands.h"
#include "raster/RasterColors.h"
#include "raster/RasterOpening.h"
#include "raster/RasterPlacement.h"
#include "raster/RasterSidecars.h"
#include "raster/RasterWarnings.h"
#include "raster/TiffBlocks.h"
#include "support/Files.h"
#include "support/GdalErrorScope.h"
#include "support/LDataError.h"
#include "support/Text.h"

namespace orvex {
namespace {

std::wstring Wide(const char* text) {
    return FromUtf8(text == nullptr ? "" : text);
}

std::wstring Item(GDALMajorObjectH object, const char* name, const char* domain) {
    return Wide(GDALGetMetadataItem(object, name, domain));
}

/// Where formats keep the time of acquisition; a TIFF's own time is that of its making, and comes last.
struct TimeItem {
    const char* name;
    const char* domain;
};
constexpr TimeItem kTimeItems[] = {{"ACQUISITIONDATETIME", "IMAGERY"},
                                   {"EXIF_DateTimeOriginal", nullptr},
                                   {"NITF_IDATIM", nullptr},
                                   {"EXIF_DateTime", nullptr},
                                   {"TIFFTAG_DATETIME", nullptr}};

std::wstring Acquired(GDALDatasetH dataset) {
    for (const TimeItem& item : kTimeItems) {
        if (std::wstring time = Item(dataset, item.name, item.domain); !time.empty()) {
            return time;
        }
    }
    return {};
}

void ReadFormat(GDALDatasetH dataset, RasterProperties& properties) {
    GDALDriverH driver = GDALGetDatasetDriver(dataset);
    properties.driver = Wide(GDALGetDriverShortName(driver));
    properties.format = Wide(GDALGetDriverLongName(driver));
    properties.compression = Item(dataset, "COMPRESSION", "IMAGE_STRUCTURE");
    properties.interleave = Item(dataset, "INTERLEAVE", "IMAGE_STRUCTURE");
    properties.pixelIs = Item(dataset, "AREA_OR_POINT", nullptr);
    properties.acquired = Acquired(dataset);
}

void ReadSize(GDALDatasetH dataset, RasterProperties& properties) {
    properties.width = GDALGetRasterXSize(dataset);
    properties.height = GDALGetRasterYSize(dataset);
    // A container of several images opens without one of its own.
    if (properties.width < 1 || properties.height < 1 || GDALGetRasterCount(dataset) < 1) {
        throw LDataError(Text(41216_lsid));
    }
}

RasterProperties Describe(GDALDatasetH dataset, const std::wstring& path) {
    RasterProperties properties;
    ReadSize(dataset, properties);
    const bool onlyStated = IsPutTogether(dataset);
    ReadFormat(dataset, properties);
    ReadBands(dataset, onlyStated, properties);
    ReadColors(dataset, path, properties);
    ReadPlacement(dataset, properties);
    const std::uint64_t fileSize = FileSizeOf(path).value_or(0);
    properties.totalBytes = fileSize;
    if (!onlyStated) {
        ReadSidecars(dataset, path, properties);
    }
    if (std::wstring fault = CheckTiffBlocks(dataset, fileSize); !fault.empty()) {
        properties.warnings.insert(properties.warnings.begin(), std::move(fault));
    }
    properties.hasDetails = true;
    return properties;
}

}  // namespace

RasterProperties ReadRasterProperties(const std::wstring& path) {
    const GdalErrorScope errors;
    const NoNetwork noNetwork;
    // The TIFF driver lists the folder of each file anew, whatever names it is given, unless there are more
    // than this; then it looks for each sidecar that there could be.
    const GdalOption fewListed("GDAL_READDIR_LIMIT_ON_OPEN", "64");
    const GdalDataset dataset = OpenRaster(path);
    if (!dataset) {
        throw LDataError(WhyNotOpened(path, errors.Messages()));
    }
    RasterProperties properties = Describe(dataset.get(), path);
    for (std::wstring& text : PlainMessages(errors.Messages())) {
        properties.warnings.push_back(std::move(text));
    }
    return properties;
}

}  // namespace orvex
