#include "raster/page/DemPageStore.h"

#include <optional>
#include <utility>

#include "settings/SystemSettings.h"
#include "support/Text.h"

namespace orvex {

DemStoreOutcome DemPageStore::Store(std::span<const RasterRow> rows, std::span<const std::size_t> order,
                                    const DemPageOptions& options, std::wstring_view thinning,
                                    HostObjects& host) {
    Withdraw();
    if (rows.empty()) {
        return DemStoreOutcome::Stored;
    }
    SystemSettings settings(host);
    SaveDemPageOptions(settings, options);
    const std::optional<std::int32_t> factor = ParseDemThinning(thinning);
    if (!factor.has_value()) {
        return DemStoreOutcome::ThinningRefused;
    }
    SaveDemThinning(settings, *factor);
    stored_.Store([&](Results& results) {
        results.openReadWrite = options.readWrite;
        results.append = options.append;
        results.lasVersion = options.lasVersion;
        results.pointFormat = options.pointFormat;
        results.pyramid = options.pyramid;
        results.thinning = static_cast<std::uint16_t>(*factor);
        results.lasFolder = options.lasFolder;
        results.extraValues = {};
        results.ignoreCrs = options.ignoreCrs;
        for (const std::size_t index : order) {
            const RasterRow& row = rows[index];
            if (row.IsDescribed()) {
                const std::wstring& path = row.File().path;
                results.files[FolderOf(path)].push_back(FileNameOf(path));
                results.layers[path] = row.place.layer;
            }
        }
    });
    return DemStoreOutcome::Stored;
}

DemPageStore::Results DemPageStore::Results::Of(const AddFilesParams& params) {
    return {params.demFiles,      params.demFileLayers,  params.demOpenReadWrite, params.demAppend,
            params.demLasVersion, params.demPointFormat, params.demPyramid,       params.demThinning,
            params.demLasFolder,  params.demExtraValues, params.demIgnoreCrs};
}

void DemPageStore::Results::WriteTo(AddFilesParams& params) && noexcept {
    params.demFiles = std::move(files);
    params.demFileLayers = std::move(layers);
    params.demOpenReadWrite = openReadWrite;
    params.demAppend = append;
    params.demLasVersion = lasVersion;
    params.demPointFormat = pointFormat;
    params.demPyramid = pyramid;
    params.demThinning = thinning;
    params.demLasFolder = std::move(lasFolder);
    params.demExtraValues = extraValues;
    params.demIgnoreCrs = ignoreCrs;
}

}  // namespace orvex
