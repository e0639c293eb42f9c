#include "raster/RasterListing.h"

#include <utility>

#include "support/Text.h"

namespace orvex {

ListedRaster ListRaster(RasterInspection inspection) {
    ListedRaster listed;
    listed.path = inspection.path;
    listed.summary = inspection.summary;
    listed.file = std::make_shared<const RasterInspection>(std::move(inspection));
    listed.details = listed.file->loadable ? std::make_unique<RasterFile>(listed.file) : nullptr;
    return listed;
}

ListedRaster FailedRaster(const std::wstring& path, const std::wstring& message) {
    RasterInspection inspection;
    inspection.path = path;
    inspection.summary = Text(text::kRasterCannotBeRead) + L" " + message;
    inspection.findings = {{FindingSeverity::Error, inspection.summary}};
    inspection.crs = DescribeCrs({});
    inspection.threw = true;
    return ListRaster(std::move(inspection));
}

}  // namespace orvex
