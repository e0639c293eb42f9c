#include "las/LasLayers.h"

#include <unordered_map>
#include <unordered_set>

#include "support/Text.h"

namespace orvex {

namespace {

constexpr const wchar_t* kNewLayerPrefix = L"LAS Layer_";

/// Hands out names that no layer of the project has.
class NewLayerNames {
  public:
    explicit NewLayerNames(const std::map<std::wstring, std::wstring>& existing) {
        for (const auto& [name, wkt] : existing) {
            used_.insert(ToUpper(name));
        }
    }

    std::wstring Next() {
        std::wstring name;
        do {
            name = kNewLayerPrefix + std::to_wstring(++number_);
        } while (used_.contains(ToUpper(name)));
        return name;
    }

  private:
    std::unordered_set<std::wstring> used_;
    unsigned number_ = 0;
};

struct Layer {
    std::wstring name;
    bool exists = false;
};

/// Files of one key.
struct Group {
    unsigned number = 0;
    Layer layer;
};

using LayersByKey = std::unordered_map<std::string, Layer>;

LayersByKey ExistingByKey(const std::map<std::wstring, std::wstring>& existing) {
    LayersByKey layers;
    for (const auto& [name, wkt] : existing) {
        layers.try_emplace(LayerKeyOf(*DescribeCrs(ToUtf8(wkt))), Layer{name, true});
    }
    return layers;
}

/// The one layer of all rows when differences of CRS do not count.
Layer SharedLayer(std::span<const LasRow> rows, const std::map<std::wstring, std::wstring>& existing,
                  const LayersByKey& existingByKey, NewLayerNames& names) {
    if (existingByKey.empty()) {
        return {names.Next(), false};
    }
    for (const LasRow& row : rows) {
        if (!row.inspection.loadable) {
            continue;
        }
        if (const auto found = existingByKey.find(LayerKeyOf(*row.inspection.crs));
            found != existingByKey.end()) {
            return found->second;
        }
    }
    return {existing.begin()->first, true};
}

}  // namespace

std::string LayerKeyOf(const CrsDescription& crs) {
    return crs.compatibilityGroup + '\n' + std::to_string(crs.epsg);
}

void AssignLayers(std::span<LasRow> rows, const std::map<std::wstring, std::wstring>& existing,
                  const LasLayerRules& rules) {
    NewLayerNames names(existing);
    const LayersByKey existingByKey = rules.append ? ExistingByKey(existing) : LayersByKey{};
    const Layer shared = rules.ignoreCrs ? SharedLayer(rows, existing, existingByKey, names) : Layer{};
    std::unordered_map<std::string, Group> groups;
    for (LasRow& row : rows) {
        if (!row.inspection.loadable) {
            row.group = 0;
            row.layer.clear();
            row.layerExists = false;
            continue;
        }
        const auto [place, isNew] = groups.try_emplace(LayerKeyOf(*row.inspection.crs));
        Group& group = place->second;
        if (isNew) {
            group.number = static_cast<unsigned>(groups.size());
            const auto found = existingByKey.find(place->first);
            group.layer = rules.ignoreCrs                ? shared
                          : found != existingByKey.end() ? found->second
                                                         : Layer{names.Next(), false};
        }
        row.group = group.number;
        row.layer = group.layer.name;
        row.layerExists = group.layer.exists;
    }
}

}  // namespace orvex
