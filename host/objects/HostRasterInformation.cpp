#include "host/objects/HostRasterInformation.h"

#include "crs/GdalSetup.h"
#include "raster/RasterReader.h"
#include "support/LDataError.h"
#include "support/Text.h"

namespace orvex::host {

std::int32_t HostRasterInformation::Describe(const std::wstring& path, RasterProperties& properties,
                                             std::wstring& reason) {
    // Without its data GDAL may still know the format, where another part of the process has set it up.
    const bool ready = EnsureGdal() == kHostOk;
    try {
        properties = ReadRasterProperties(path);
        return kHostOk;
    } catch (...) {
        reason = ready ? CurrentExceptionText() : Text(41210_lsid);
        return kHostFail;
    }
}

}  // namespace orvex::host
