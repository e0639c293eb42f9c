#include "raster/RasterSidecars.h"

#include <cpl_string.h>

#include <utility>
#include <vector>

#include "support/Files.h"
#include "support/GdalAccess.h"
#include "support/Text.h"

namespace orvex {
namespace {

// More than any format needs; a file can name any number of others.
constexpr std::size_t kMostSidecars = 256;

}  // namespace

void ReadSidecars(GDALDatasetH dataset, const std::wstring& path, RasterProperties& properties) {
    const CPLStringList files(GDALGetFileList(dataset));
    // GDAL does not see these two.
    std::vector<std::wstring> names{path + L".ovr", path + L".msk"};
    names.reserve(names.size() + static_cast<std::size_t>(files.size()));
    for (int i = 0; i < files.size(); ++i) {
        names.push_back(NativePath(FromUtf8(GdalAccess::PathOf(files[i]))));
    }
    for (std::wstring& sidecar : names) {
        // Files inside archives, and files removed meanwhile, have no size.
        const auto size = FileSizeOf(sidecar);
        if (!size || PathKey(sidecar) == PathKey(path) || properties.sidecars.size() >= kMostSidecars) {
            continue;
        }
        properties.totalBytes += *size;
        properties.sidecars.push_back(std::move(sidecar));
    }
}

}  // namespace orvex
