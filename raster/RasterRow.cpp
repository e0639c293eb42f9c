#include "raster/RasterRow.h"

#include <algorithm>

namespace orvex {

RasterLoadFlag LoadFlagOf(const RasterRow& row) {
    if (!row.IsDescribed()) {
        return RasterLoadFlag::NotLoadable;
    }
    const bool odd = std::ranges::any_of(row.File().findings, [](const Finding& finding) {
        return finding.severity != FindingSeverity::Note;
    });
    return odd ? RasterLoadFlag::Findings : RasterLoadFlag::Good;
}

std::wstring FindingsText(const RasterRow& row) {
    std::wstring text;
    for (const Finding& finding : row.File().findings) {
        text += (text.empty() ? L"" : L"\n") + finding.text;
    }
    return text;
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
