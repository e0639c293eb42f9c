#include "host/app/RecordIntake.h"

#include <QFileInfo>
#include <QWidget>
#include <algorithm>
#include <array>

#include "host/app/FailureText.h"
#include "host/app/HostText.h"
#include "host/app/LidarCheck.h"
#include "host/app/RasterPyramids.h"
#include "host/app/RecordFiles.h"
#include "host/app/WorkDialog.h"
#include "orvexcommon/AddFilesParams.h"
#include "orvexcommon/Exports.h"
#include "orvexcommon/LasFileInfo.h"
#include "support/UserPromptsQt.h"

namespace orvex {

namespace {

/// Of a LAZ file it is the decompressed one that is written.
bool CanWriteAll(const AddFilesParams& record) {
    return std::ranges::all_of(record.lasFileDetails, [](const auto& entry) {
        return QFileInfo(ToQString(entry.second->FileName())).isWritable();
    });
}

/// Layers that are made are put behind those that were there, so that places stay.
void Summarise(IntakeResult& result) {
    const std::array parts = {result.las, result.rasters, result.dems};
    AddedFiles sum;
    std::size_t most = 0;
    for (const AddedFiles& part : parts) {
        sum.files += part.files;
        sum.newLayers += part.newLayers;
        sum.alreadyThere += part.alreadyThere;
        if (part.files > most) {
            most = part.files;
            result.mainLayer = part.mainLayer;
        }
    }
    result.status = sum.files == 0 ? HostText(40881_lsid) : HostText(40882_lsid, {sum.files, sum.newLayers});
    if (sum.alreadyThere > 0) {
        result.status += ' ' + HostText(41442_lsid, {sum.alreadyThere});
    }
}

}  // namespace

RecordIntake::RecordIntake(Project& project, QString projectFolder, QWidget* window)
    : project_(project), projectFolder_(std::move(projectFolder)), window_(window) {}

IntakeResult RecordIntake::Take(const AddFilesParams& record) {
    IntakeResult result;
    result.las = TakeLas(record);
    result.rasters = TakeRasters(record);
    Summarise(result);
    return result;
}

AddedFiles RecordIntake::TakeLas(const AddFilesParams& record) {
    const LidarReport found = CheckLidar(project_, record);
    bool stop = false;
    MessageRegardingAddingLidar(reinterpret_cast<HWND>(window_->winId()), Text(40880_lsid), found.appending,
                                found.crsDiffers, found.crsMissing, found.damaged, found.tellSkipped,
                                found.alreadyThere, found.unreadable, stop);
    if (stop || !MayAddLas(record)) {
        return {};
    }
    return project_.Take(LayerKind::Las, LasFilesOf(record, found.skipped));
}

/// Files that are opened read-write can be changed: the user is asked once more.
bool RecordIntake::MayAddLas(const AddFilesParams& record) {
    if (!record.lasOpenSetting || record.lasFiles.empty()) {
        return true;
    }
    const AddLidarChoice choice = GetAddingLidarChoice(CanWriteAll(record));
    project_.lidarAccess = static_cast<LidarAccess>(choice);
    return choice != ADD_LIDAR_NOT_AT_ALL;
}

AddedFiles RecordIntake::TakeRasters(const AddFilesParams& record) {
    const std::vector<NewFile> rasters = RasterFilesOf(record);
    if (record.rasterPyramid && !rasters.empty()) {
        BuildPyramids(rasters);
    }
    return project_.Take(LayerKind::Raster, rasters);
}

void RecordIntake::BuildPyramids(const std::vector<NewFile>& rasters) {
    std::vector<std::wstring> paths;
    std::ranges::transform(rasters, std::back_inserter(paths),
                           [](const NewFile& raster) { return raster.file.path; });
    const auto result = std::make_shared<RasterPyramids::Result>();
    const WorkEnd end = WorkDialog::Run(
        window_, HostText(41443_lsid),
        [paths, result](Kst::ProgressIf& progress) { *result = RasterPyramids::Build(paths, progress); });
    if (end == WorkEnd::Finished && !result->failures.empty()) {
        UserPromptsQt(window_).Show({FailureText(Text(41444_lsid), result->failures), Text(41443_lsid),
                                     PromptIcon::Warning, PromptButtons::Ok});
    }
}

}  // namespace orvex
