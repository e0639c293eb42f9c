#include "raster/RasterRow.h"

namespace orvex {

LoadFlag LoadFlagOf(const RasterRow& row) {
    return LoadFlagFor(row.IsDescribed(), row.File().findings);
}

std::wstring FindingsText(const RasterRow& row) {
    return FindingLines(row.File().findings);
}

void AssignLayers(std::vector<RasterRow>& rows, const std::map<std::wstring, std::wstring>& existing,
                  const LayerRules& rules, LayerCrs crs, const std::wstring& prefix) {
    const CrsPtr none = DescribeCrs({});
    std::vector<CrsPtr> files;
    files.reserve(rows.size());
    for (const RasterRow& row : rows) {
        if (!row.IsDescribed()) {
            files.emplace_back();
        } else {
            files.push_back(crs == LayerCrs::None ? none : row.File().crs);
        }
    }
    std::vector<LayerPlace> places = PlaceInLayers(files, existing, rules, prefix);
    for (std::size_t i = 0; i < rows.size(); ++i) {
        rows[i].place = std::move(places[i]);
    }
}

}  // namespace orvex
