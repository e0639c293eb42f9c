#include "host/app/Project.h"

#include <algorithm>
#include <unordered_map>

#include "orvexcommon/AddFilesParams.h"
#include "orvexcommon/LasFileInfo.h"
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

/// Where a file lies in the project.
struct Place {
    std::size_t layer;
    std::size_t file;
};

std::unordered_map<std::wstring, Place> PlacesByKey(const std::vector<Layer>& layers) {
    std::unordered_map<std::wstring, Place> places;
    for (std::size_t layer = 0; layer < layers.size(); ++layer) {
        for (std::size_t file = 0; file < layers[layer].files.size(); ++file) {
            places.emplace(PathKey(layers[layer].files[file].path), Place{layer, file});
        }
    }
    return places;
}

const LasFileInfo* DetailsOf(const AddFilesParams& record, const std::wstring& path) {
    const auto found = record.lasFileDetails.find(path);
    return found == record.lasFileDetails.end() ? nullptr : found->second;
}

std::wstring LayerNameOf(const AddFilesParams& record, const std::wstring& path) {
    const auto found = record.lasFileLayers.find(path);
    return found == record.lasFileLayers.end() || found->second.empty() ? Text(40820_lsid) : found->second;
}

}  // namespace

std::wstring JoinPath(const std::wstring& folder, const std::wstring& name) {
    if (folder.empty()) {
        return name;
    }
    const bool separated = folder.back() == L'/' || folder.back() == L'\\';
    return separated ? folder + name : folder + L'/' + name;
}

std::size_t Project::FileCount() const {
    std::size_t count = 0;
    for (const Layer& layer : layers) {
        count += layer.files.size();
    }
    return count;
}

Layer* Project::FindLayer(const std::wstring& name) {
    const auto found =
        std::find_if(layers.begin(), layers.end(), [&](const Layer& layer) { return layer.name == name; });
    return found == layers.end() ? nullptr : &*found;
}

std::map<std::wstring, std::wstring> Project::LayersForDialog() const {
    std::map<std::wstring, std::wstring> byName;
    for (const Layer& layer : layers) {
        byName.emplace(layer.name, FromUtf8(layer.wkt));
    }
    return byName;
}

AddedFiles Project::Add(const AddFilesParams& record) {
    AddedFiles added;
    std::unordered_map<std::wstring, Place> places = PlacesByKey(layers);
    std::vector<Place> moved;
    for (const auto& [folder, names] : record.lasFiles) {
        for (const std::wstring& name : names) {
            const std::wstring path = JoinPath(folder, name);
            const LasFileInfo* details = DetailsOf(record, path);
            const std::wstring layerName = LayerNameOf(record, path);
            Layer* layer = FindLayer(layerName);
            if (layer == nullptr) {
                layers.push_back({layerName, details == nullptr ? std::string() : details->CrsWkt(), {}});
                layer = &layers.back();
                ++added.newLayers;
            }
            LayerFile file = DescribeFile(path, details, record.lasLoadSetting);
            const auto place = static_cast<std::size_t>(layer - layers.data());
            const auto known = places.find(PathKey(path));
            if (known != places.end() && known->second.layer == place) {
                layer->files[known->second.file] = std::move(file);
                ++added.updated;
                continue;
            }
            if (known != places.end()) {
                moved.push_back(known->second);
            }
            ++(known != places.end() ? added.updated : added.files);
            places[PathKey(path)] = {place, layer->files.size()};
            layer->files.push_back(std::move(file));
        }
    }
    // From the back, so that the places of the others stay true.
    std::sort(moved.begin(), moved.end(), [](const Place& a, const Place& b) {
        return a.layer != b.layer ? a.layer > b.layer : a.file > b.file;
    });
    for (const Place& place : moved) {
        Remove(place.layer, place.file);
    }
    return added;
}

void Project::Remove(std::size_t layer, std::size_t file) {
    std::vector<LayerFile>& files = layers[layer].files;
    files.erase(files.begin() + static_cast<std::ptrdiff_t>(file));
    if (files.empty()) {
        RemoveLayer(layer);
    }
}

void Project::RemoveLayer(std::size_t layer) {
    layers.erase(layers.begin() + static_cast<std::ptrdiff_t>(layer));
}

void DeleteDetails(AddFilesParams& record) {
    for (const auto& [path, details] : record.lasFileDetails) {
        delete details;
    }
    record.lasFileDetails.clear();
}

}  // namespace orvex
