#include "raster/RasterSidecars.h"

#include <cpl_string.h>

#include <memory>

#include "support/Files.h"
#include "support/Text.h"

namespace orvex {
namespace {

/// Enough for every format of several files; a file may name any number of others.
constexpr std::size_t kMostSidecars = 256;

struct FreeList {
    void operator()(char** list) const noexcept { CSLDestroy(list); }
};

}  // namespace

void ReadSidecars(GDALDatasetH dataset, const std::wstring& path, RasterProperties& properties) {
    const std::unique_ptr<char*[], FreeList> files(GDALGetFileList(dataset));
    const std::wstring key = PathKey(path);
    for (char** file = files.get(); file != nullptr && *file != nullptr; ++file) {
        std::wstring sidecar = NativePath(FromUtf8(*file));
        // Files inside archives and what has gone meanwhile have no size.
        const auto size = FileSizeOf(sidecar);
        if (!size || PathKey(sidecar) == key || properties.sidecars.size() >= kMostSidecars) {
            continue;
        }
        properties.totalBytes += *size;
        properties.sidecars.push_back(std::move(sidecar));
    }
}

}  // namespace orvex
