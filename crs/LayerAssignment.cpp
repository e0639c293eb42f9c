#include "crs/LayerAssignment.h"

#include <algorithm>
#include <string_view>
#include <unordered_map>

#include "support/Text.h"

namespace orvex {

namespace {

/// Generates names that no layer of the project has.
class NewLayerNames {
  public:
    NewLayerNames(const std::wstring& prefix, const std::map<std::wstring, std::wstring>& existing)
        : prefix_(prefix) {
        const std::wstring upperPrefix = ToUpper(prefix);
        for (const auto& [name, wkt] : existing) {
            const std::wstring upper = ToUpper(name);
            if (upper.starts_with(upperPrefix)) {
                AddNumber(std::wstring_view(upper).substr(upperPrefix.size()));
            }
        }
        std::ranges::sort(used_);
        nextUsed_ = used_.begin();
    }

    std::wstring Next() {
        ++number_;
        for (; nextUsed_ != used_.end() && *nextUsed_ <= number_; ++nextUsed_) {
            number_ += *nextUsed_ == number_ ? 1 : 0;
        }
        return prefix_ + std::to_wstring(number_);
    }

  private:
    // Of a name that Next could give; it has neither other letters nor leading zeros.
    void AddNumber(std::wstring_view digits) {
        constexpr std::size_t kMostDigits = 9;
        const bool isNumber = !digits.empty() && digits.size() <= kMostDigits && digits[0] != L'0' &&
                              std::ranges::all_of(digits, [](wchar_t c) { return c >= L'0' && c <= L'9'; });
        if (isNumber) {
            used_.push_back(static_cast<unsigned>(std::stoul(std::wstring(digits))));
        }
    }

    const std::wstring& prefix_;
    std::vector<unsigned> used_;
    std::vector<unsigned>::const_iterator nextUsed_;
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
    std::unordered_map<const CrsDescription*, const LayerPlace*> known;  // files share few descriptions
    std::vector<LayerPlace> places;
    places.reserve(files.size());
    for (const CrsPtr& crs : files) {
        if (crs == nullptr) {
            places.emplace_back();
            continue;
        }
        if (const auto found = known.find(crs.get()); found != known.end()) {
            places.push_back(*found->second);
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
        known.emplace(crs.get(), &place->second);
        places.push_back(place->second);
    }
    return places;
}

}  // namespace orvex
