#include "host/app/RecordFiles.h"

#include <QFileInfo>
#include <cmath>
#include <map>

#include "orvexcommon/AddFilesParams.h"
#include "orvexcommon/LasFileInfo.h"
#include "orvexcommon/RasterFileInfo.h"
#include "support/QtText.h"
#include "support/Text.h"

namespace orvex {

namespace {

/// The details of a file; null when it has none.
template <typename Info>
const Info* DetailsOf(const std::map<std::wstring, Info*>& details, const std::wstring& path) {
    const auto found = details.find(path);
    return found == details.end() ? nullptr : found->second;
}

LayerFile Describe(const LasFileInfo* details) {
    LayerFile file;
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

RasterInfo Describe(const RasterProperties& properties) {
    return {properties.width,  properties.height, properties.bands,
            properties.driver, properties.extent, properties.transform};
}

std::set<std::wstring> KeysOf(const Project& project) {
    std::set<std::wstring> keys;
    for (const Layer& layer : project.layers) {
        if (layer.kind != LayerKind::Las) {
            continue;
        }
        for (const LayerFile& file : layer.files) {
            keys.insert(PathKey(file.path));
        }
    }
    return keys;
}

bool HasExtent(const LasFileInfo& file) {
    const auto low = file.Minimum();
    const auto high = file.Maximum();
    for (std::size_t axis = 0; axis < 3; ++axis) {
        if (!std::isfinite(low[axis]) || !std::isfinite(high[axis]) || low[axis] > high[axis]) {
            return false;
        }
    }
    return true;
}

/// The compatibility group that each LAS layer has, or gets with its first file.
class LayerGroups {
  public:
    explicit LayerGroups(const Project& project) {
        for (const Layer& layer : project.layers) {
            if (layer.kind == LayerKind::Las) {
                groupOfLayer_.emplace(layer.name, groups_.Of(layer.wkt));
            }
        }
    }

    bool Fits(const std::wstring& layer, const std::string& wkt) {
        const std::string& group = groups_.Of(wkt);
        return groupOfLayer_.emplace(layer, group).first->second == group;
    }

  private:
    CrsGroups groups_;
    std::map<std::wstring, std::string> groupOfLayer_;
};

}  // namespace

std::wstring JoinPath(const std::wstring& folder, const std::wstring& name) {
    if (folder.empty()) {
        return name;
    }
    const bool separated = folder.back() == L'/' || folder.back() == L'\\';
    return NativePath(separated ? folder + name : folder + L'/' + name);
}

std::wstring LayerNameOf(const std::map<std::wstring, std::wstring>& layerOfFile, const std::wstring& path,
                         const std::wstring& otherwise) {
    const auto found = layerOfFile.find(path);
    return found == layerOfFile.end() || found->second.empty() ? otherwise : found->second;
}

std::vector<NewFile> LasFilesOf(const AddFilesParams& record, const std::set<std::wstring>& skipped) {
    std::vector<NewFile> files;
    for (const auto& [folder, names] : record.lasFiles) {
        for (const std::wstring& name : names) {
            const std::wstring path = JoinPath(folder, name);
            if (skipped.contains(path)) {
                continue;
            }
            const LasFileInfo* details = DetailsOf(record.lasFileDetails, path);
            NewFile& added = files.emplace_back();
            added.layer = LayerNameOf(record.lasFileLayers, path, Text(text::kDefaultLasLayer));
            added.wkt = details == nullptr ? std::string() : details->CrsWkt();
            added.file = Describe(details);
            added.file.path = path;
            added.file.footprintOnly = record.lasLoadSetting;
        }
    }
    return files;
}

std::vector<NewFile> RasterFilesOf(const AddFilesParams& record) {
    std::vector<NewFile> files;
    for (const auto& [folder, names] : record.rasterFiles) {
        for (const std::wstring& name : names) {
            NewFile& added = files.emplace_back();
            added.file.path = JoinPath(folder, name);
            added.layer =
                LayerNameOf(record.rasterFileLayers, added.file.path, Text(text::kDefaultRasterLayer));
            const RasterFileInfo* details = DetailsOf(record.rasterFileDetails, added.file.path);
            if (details != nullptr) {
                added.wkt = details->Properties().wkt;
                added.file.raster = Describe(details->Properties());
            }
        }
    }
    return files;
}

void DeleteDetails(AddFilesParams& record) {
    for (const auto& [path, details] : record.lasFileDetails) {
        delete details;
    }
    for (const auto& [path, details] : record.rasterFileDetails) {
        delete details;
    }
    record.lasFileDetails.clear();
    record.rasterFileDetails.clear();
}

LidarReport CheckLidar(const Project& project, const AddFilesParams& record) {
    LidarReport findings;
    findings.tellSkipped = true;
    const std::set<std::wstring> known = KeysOf(project);
    LayerGroups groups(project);
    for (const auto& [folder, names] : record.lasFiles) {
        for (const std::wstring& name : names) {
            const std::wstring path = JoinPath(folder, name);
            if (known.contains(PathKey(path))) {
                findings.alreadyThere = true;
                findings.skipped.insert(path);
                continue;
            }
            if (!QFileInfo(ToQString(path)).isReadable()) {
                findings.unreadable = true;
                findings.skipped.insert(path);
                continue;
            }
            const auto details = record.lasFileDetails.find(path);
            if (details == record.lasFileDetails.end() || details->second == nullptr) {
                findings.damaged = true;
                continue;
            }
            const std::string wkt = details->second->CrsWkt();
            const std::wstring layer =
                record.lasFileLayers.contains(path) ? record.lasFileLayers.at(path) : L"";
            findings.appending = findings.appending || record.existingLasLayers.contains(layer);
            findings.crsMissing = findings.crsMissing || wkt.empty();
            findings.crsDiffers = findings.crsDiffers || !groups.Fits(layer, wkt);
            findings.damaged = findings.damaged || !HasExtent(*details->second);
        }
    }
    return findings;
}

}  // namespace orvex
