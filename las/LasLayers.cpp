#include "las/LasLayers.h"

#include <vector>

namespace orvex {

void AssignLayers(std::span<LasRow> rows, const std::map<std::wstring, std::wstring>& existing,
                  const LasLayerRules& rules) {
    std::vector<CrsPtr> files;
    files.reserve(rows.size());
    for (const LasRow& row : rows) {
        files.push_back(row.inspection.loadable ? row.inspection.crs : nullptr);
    }
    const std::vector<LayerPlace> places = PlaceInLayers(files, existing, rules, L"LAS Layer_");
    for (std::size_t i = 0; i < rows.size(); ++i) {
        rows[i].layer = places[i].layer;
        rows[i].layerExists = places[i].exists;
        rows[i].group = places[i].group;
    }
}

}  // namespace orvex
