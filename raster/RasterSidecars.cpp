#include "raster/RasterSidecars.h"

#include <cpl_string.h>

#include <algorithm>
#include <iterator>
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
    // The list has the name under which the file was opened, which is a full path.
    const std::wstring keys[] = {PathKey(path), PathKey(FromUtf8(GDALGetDescription(dataset)))};
    for (char** file = files.get(); file != nullptr && *file != nullptr; ++file) {
        std::wstring sidecar = NativePath(FromUtf8(*file));
        // Files inside archives and what has gone meanwhile have no size.
        const auto size = FileSizeOf(sidecar);
        const bool isItself = std::ranges::find(keys, PathKey(sidecar)) != std::end(keys);
        if (!size || isItself || properties.sidecars.size() >= kMostSidecars) {
            continue;
        }
        properties.totalBytes += *size;
        properties.sidecars.push_back(std::move(sidecar));
    }
}

}  // namespace orvex
