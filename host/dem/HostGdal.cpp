#include "host/dem/HostGdal.h"

#include "crs/GdalSetup.h"
#include "raster/RasterFindings.h"
#include "raster/RasterReader.h"
#include "support/LDataError.h"

namespace orvex {

bool SetUpGdal() {
    return EnsureGdal();
}

GDALDatasetUniquePtr OpenRasterFile(const std::wstring& path, std::wstring& cause) {
    const GdalErrorScope errors;
    try {
        return GDALDatasetUniquePtr(GDALDataset::FromHandle(OpenRaster(path, errors).release()));
    } catch (const LDataError& error) {
        cause = error.Text();
        return nullptr;
    }
}

std::wstring FailureReason(const GdalErrorScope& errors) {
    return PlainReason(errors.Messages());
}

}  // namespace orvex
