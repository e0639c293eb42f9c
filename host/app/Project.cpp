#include "host/app/Project.h"

#include <algorithm>
#include <tuple>

#include "orvexcommon/AddFilesParams.h"
#include "orvexcommon/LasFileInfo.h"
#include "support/NaturalOrder.h"
#include "support/Text.h"

namespace orvex {

namespace {

LayerFile DescribeFile(const std::wstring& path, const LasFileInfo* details, bool footprintOnly) {
    LayerFile file;
    file.path = path;
    file.footprintOnly = footprintOnly;
    if (details != nullptr) {
        file.points = details->GetPointCount();
        file.min = details->Minimum();
        file.max = details->Maximum();
        file.version = details->Version();
        file.pointFormat = details->PointFormat();
        file.readOnly = details->IsReadOnly();
    }
    return file;
}

const LasFileInfo* DetailsOf(const AddFilesParams& record, const std::wstring& path) {
    const auto found = record.lasFileDetails.find(path);
    return found == record.lasFileDetails.end() ? nullptr : found->second;
}

std::wstring LayerNameOf(const AddFilesParams& record, const std::wstring& path) {
    const auto found = record.lasFileLayers.find(path);
    return found == record.lasFileLayers.end() || found->second.empty() ? Text(40820_lsid) : found->second;
}

/// Calls `take` with the full path and the details (or null) of each file that is not skipped.
template <typename Take>
void ForEachFile(const AddFilesParams& record, const std::set<std::wstring>& skipped, Take take) {
    for (const auto& [folder, names] : record.lasFiles) {
        for (const std::wstring& name : names) {
            const std::wstring path = JoinPath(folder, name);
            if (!skipped.contains(path)) {
                take(path, DetailsOf(record, path));
            }
        }
    }
}

/// Adds the layers that the record's files go to and the project lacks, by name and number; returns how many.
std::size_t MakeMissingLayers(std::vector<Layer>& layers, const AddFilesParams& record,
                              const std::set<std::wstring>& skipped) {
    std::map<std::wstring, std::string, decltype(&NaturalLess)> wktOfLayer(&NaturalLess);
    ForEachFile(record, skipped, [&](const std::wstring& path, const LasFileInfo* details) {
        const std::wstring name = LayerNameOf(record, path);
        const auto isMeant = [&](const Layer& layer) { return layer.name == name; };
        if (!wktOfLayer.contains(name) && std::none_of(layers.begin(), layers.end(), isMeant)) {
            wktOfLayer.emplace(name, details == nullptr ? std::string() : details->CrsWkt());
        }
    });
    for (const auto& [name, wkt] : wktOfLayer) {
        layers.push_back({name, wkt, {}});
    }
    return wktOfLayer.size();
}

}  // namespace

std::wstring JoinPath(const std::wstring& folder, const std::wstring& name) {
    if (folder.empty()) {
        return name;
    }
    const bool separated = folder.back() == L'/' || folder.back() == L'\\';
    return NativePath(separated ? folder + name : folder + L'/' + name);
}

std::size_t Project::FileCount() const {
    std::size_t count = 0;
    for (const Layer& layer : layers) {
        count += layer.files.size();
    }
    return count;
}

std::map<std::wstring, std::wstring> Project::LayersForDialog() const {
    std::map<std::wstring, std::wstring> byName;
    for (const Layer& layer : layers) {
        byName.emplace(layer.name, FromUtf8(layer.wkt));
    }
    return byName;
}

AddedFiles Project::Add(const AddFilesParams& record, const std::set<std::wstring>& skipped) {
    AddedFiles added;
    added.newLayers = MakeMissingLayers(layers, record, skipped);
    std::map<std::wstring, std::size_t> placeOfLayer;
    for (std::size_t i = 0; i < layers.size(); ++i) {
        placeOfLayer.emplace(layers[i].name, i);
    }
    std::vector<std::size_t> addedTo(layers.size());
    ForEachFile(record, skipped, [&](const std::wstring& path, const LasFileInfo* details) {
        const std::size_t place = placeOfLayer.at(LayerNameOf(record, path));
        layers[place].files.push_back(DescribeFile(path, details, record.lasLoadSetting));
        ++addedTo[place];
        ++added.files;
    });
    const auto rank = [&](std::size_t i) {
        return std::tuple(addedTo[i] > 0, !layers[i].wkt.empty(), addedTo[i]);
    };
    for (std::size_t i = 1; i < layers.size(); ++i) {
        added.mainLayer = rank(i) > rank(added.mainLayer) ? i : added.mainLayer;
    }
    return added;
}

void Project::Remove(const std::set<std::pair<std::size_t, std::size_t>>& files,
                     const std::set<std::size_t>& wholeLayers) {
    std::vector<Layer> kept;
    for (std::size_t layer = 0; layer < layers.size(); ++layer) {
        if (wholeLayers.contains(layer)) {
            continue;
        }
        Layer rest{layers[layer].name, layers[layer].wkt, {}};
        for (std::size_t file = 0; file < layers[layer].files.size(); ++file) {
            if (!files.contains({layer, file})) {
                rest.files.push_back(std::move(layers[layer].files[file]));
            }
        }
        if (!rest.files.empty()) {
            kept.push_back(std::move(rest));
        }
    }
    layers = std::move(kept);
}

void DeleteDetails(AddFilesParams& record) {
    for (const auto& [path, details] : record.lasFileDetails) {
        delete details;
    }
    record.lasFileDetails.clear();
}

}  // namespace orvex
