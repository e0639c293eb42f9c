#include "crs/LayerAssignment.h"

#include <unordered_map>
#include <unordered_set>

#include "support/Text.h"

namespace orvex {

namespace {

/// Generates names that no layer of the project has.
class NewLayerNames {
  public:
    NewLayerNames(const std::wstring& prefix, const std::map<std::wstring, std::wstring>& existing)
        : prefix_(prefix) {
        for (const auto& [name, wkt] : existing) {
            used_.insert(ToUpper(name));
        }
    }

    std::wstring Next() {
        std::wstring name;
        do {
            name = prefix_ + std::to_wstring(++number_);
        } while (used_.contains(ToUpper(name)));
        return name;
    }

  private:
    const std::wstring& prefix_;
    std::unordered_set<std::wstring> used_;
    unsigned number_ = 0;
};

struct Layer {
    std::wstring name;
    bool exists = false;
};

using LayersByKey = std::unordered_map<std::string, Layer>;

LayersByKey ExistingByKey(const std::map<std::wstring, std::wstring>& existing) {
    LayersByKey layers;
    for (const auto& [name, wkt] : existing) {
        const CrsPtr crs = DescribeCrs(ToUtf8(wkt));
        crs->Identify();
        layers.try_emplace(LayerKeyOf(*crs), Layer{name, true});
    }
    return layers;
}

/// The layer that all files share when their CRSs are ignored.
Layer SharedLayer(std::span<const CrsPtr> files, const std::map<std::wstring, std::wstring>& existing,
                  const LayersByKey& existingByKey, NewLayerNames& names) {
    if (existingByKey.empty()) {
        return {names.Next(), false};
    }
    for (const CrsPtr& crs : files) {
        if (crs == nullptr) {
            continue;
        }
        if (const auto found = existingByKey.find(LayerKeyOf(*crs)); found != existingByKey.end()) {
            return found->second;
        }
    }
    return {existing.begin()->first, true};
}

}  // namespace

std::string LayerKeyOf(const CrsDescription& crs) {
    const CrsIdentity* const identity = crs.identity.Known();
    return identity == nullptr ? "not identified: " + crs.sourceWkt : identity->group;
}

std::vector<std::function<void()>> IdentificationWork(std::vector<CrsPtr> files,
                                                      const std::map<std::wstring, std::wstring>& existing) {
    std::vector<std::function<void()>> work;
    work.reserve(files.size() + existing.size());
    for (CrsPtr& crs : files) {
        work.emplace_back([crs = std::move(crs)] { crs->Identify(); });
    }
    for (const auto& [name, wkt] : existing) {
        work.emplace_back([text = ToUtf8(wkt)] { DescribeCrs(text)->Identify(); });
    }
    return work;
}

std::vector<LayerPlace> PlaceInLayers(std::span<const CrsPtr> files,
                                      const std::map<std::wstring, std::wstring>& existing,
                                      const LayerRules& rules, const std::wstring& prefix) {
    if (files.empty()) {
        return {};  // as when the dialog opens, which is not to wait for the project's CRSs to be identified
    }
    NewLayerNames names(prefix, existing);
    const LayersByKey existingByKey = rules.append ? ExistingByKey(existing) : LayersByKey{};
    const Layer shared = rules.ignoreCrs ? SharedLayer(files, existing, existingByKey, names) : Layer{};
    std::unordered_map<std::string, LayerPlace> groups;
    std::vector<LayerPlace> places;
    places.reserve(files.size());
    for (const CrsPtr& crs : files) {
        if (crs == nullptr) {
            places.emplace_back();
            continue;
        }
        const auto [place, isNew] = groups.try_emplace(LayerKeyOf(*crs));
        if (isNew) {
            const auto found = existingByKey.find(place->first);
            const Layer layer = rules.ignoreCrs                ? shared
                                : found != existingByKey.end() ? found->second
                                                               : Layer{names.Next(), false};
            place->second = {layer.name, layer.exists, static_cast<unsigned>(groups.size())};
        }
        places.push_back(place->second);
    }
    return places;
}

}  // namespace orvex
