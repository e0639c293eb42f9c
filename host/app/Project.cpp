#include "host/app/Project.h"

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

std::map<std::wstring, std::wstring> Project::LayersForDialog() const {
    std::map<std::wstring, std::wstring> byName;
    for (const Layer& layer : layers) {
        byName.emplace(layer.name, FromUtf8(layer.wkt));
    }
    return byName;
}

AddedFiles Project::Add(const AddFilesParams& record, const std::set<std::wstring>& skipped) {
    AddedFiles added;
    std::map<std::wstring, std::size_t> placeOfLayer;
    for (std::size_t i = 0; i < layers.size(); ++i) {
        placeOfLayer.emplace(layers[i].name, i);
    }
    for (const auto& [folder, names] : record.lasFiles) {
        for (const std::wstring& name : names) {
            const std::wstring path = JoinPath(folder, name);
            if (skipped.contains(path)) {
                continue;
            }
            const LasFileInfo* details = DetailsOf(record, path);
            const std::wstring layerName = LayerNameOf(record, path);
            const auto [place, isNew] = placeOfLayer.emplace(layerName, layers.size());
            if (isNew) {
                layers.push_back({layerName, details == nullptr ? std::string() : details->CrsWkt(), {}});
                ++added.newLayers;
            }
            layers[place->second].files.push_back(DescribeFile(path, details, record.lasLoadSetting));
            ++added.files;
        }
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
