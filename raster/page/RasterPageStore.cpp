#include "raster/page/RasterPageStore.h"

#include <utility>

#include "support/Text.h"

namespace orvex {

void RasterPageStore::Store(std::span<const RasterRow> rows, std::span<const std::size_t> order,
                            const RasterPageOptions& options, const OptionStore& store) {
    SaveRasterPageOptions(store, options);
    stored_.Store([&](Results& results) {
        results.append = options.append;
        results.pyramid = options.pyramid;
        for (const std::size_t index : order) {
            const RasterRow& row = rows[index];
            if (row.inspection.details == nullptr) {
                continue;
            }
            const std::wstring& path = row.File().path;
            results.files[FolderOf(path)].push_back(FileNameOf(path));
            results.details[path] = row.inspection.details.get();
            results.layers[path] = row.place.layer;
        }
    });
}

void RasterPageStore::HandOver(std::vector<RasterRow>& rows) {
    if (stored_.Keep()) {
        for (RasterRow& row : rows) {
            static_cast<void>(row.inspection.details.release());  // the record holds its address
        }
    }
}

RasterPageStore::Results RasterPageStore::Results::Of(const AddFilesParams& params) {
    return {params.rasterFiles, params.rasterFileDetails, params.rasterFileLayers, params.rasterAppend,
            params.rasterPyramid};
}

void RasterPageStore::Results::WriteTo(AddFilesParams& params) && noexcept {
    params.rasterFiles = std::move(files);
    params.rasterFileDetails = std::move(details);
    params.rasterFileLayers = std::move(layers);
    params.rasterAppend = append;
    params.rasterPyramid = pyramid;
}

}  // namespace orvex
