#include "host/app/LidarCheck.h"

#include <QFileInfo>
#include <cmath>
#include <map>

#include "host/app/CrsGroups.h"
#include "host/app/HostText.h"
#include "host/app/Project.h"
#include "host/app/RecordFiles.h"
#include "orvexcommon/AddFilesParams.h"
#include "orvexcommon/LasFileInfo.h"

namespace orvex {

namespace {

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
