#include "host/app/RecordIntake.h"

#include <QFileInfo>
#include <QWidget>
#include <algorithm>

#include "host/app/HostText.h"
#include "host/app/RasterJobs.h"
#include "host/app/RecordFiles.h"
#include "host/app/WorkDialog.h"
#include "host/dem/HostGdal.h"
#include "orvexcommon/AddFilesParams.h"
#include "orvexcommon/Exports.h"
#include "orvexcommon/LasFileInfo.h"
#include "support/DesktopQt.h"
#include "support/Format.h"
#include "support/LDataError.h"
#include "support/ProjectPath.h"

namespace orvex {

namespace {

/// True if every file can be written; of a LAZ file, the decompressed one.
bool CanWriteAll(const AddFilesParams& record) {
    return std::ranges::all_of(record.lasFileDetails, [](const auto& entry) {
        return QFileInfo(ToQString(entry.second->FileName())).isWritable();
    });
}

/// Index of the layer that got the most files, of any kind; nullopt if none got any. New layers are appended,
/// so indexes of earlier ones stay valid.
std::optional<std::size_t> MainLayer(const IntakeResult& result) {
    std::optional<std::size_t> main;
    std::size_t most = 0;
    for (const AddedFiles& part : {result.las, result.rasters, result.dems}) {
        if (part.files > most) {
            most = part.files;
            main = part.mainLayer;
        }
    }
    return main;
}

/// Output folder of converted files. A relative folder without the project token is in the project, too.
std::wstring DemFolder(const AddFilesParams& record, const std::wstring& projectFolder) {
    const std::wstring folder = ResolveProjectPath(record.demLasFolder, projectFolder);
    return ToPath(folder).is_absolute() ? folder : JoinPath(projectFolder, folder);
}

DemConversionOptions OptionsOf(const AddFilesParams& record, std::wstring folder) {
    DemConversionOptions options;
    options.versionMinor = MinorVersionOfItem(record.demLasVersion);
    options.pointFormat = record.demPointFormat;
    options.thinning = std::max<unsigned>(record.demThinning, 1);
    options.ignoreCrs = record.demIgnoreCrs;
    options.outputFolder = std::move(folder);
    return options;
}

std::wstring ReasonForLeavingOut(const std::wstring& path) {
    SetUpGdal();
    std::wstring cause;
    OpenRasterFile(path, cause);
    return cause.empty() ? Text(text::kRasterDamagedOrUnsupported) : cause;
}

}  // namespace

RecordIntake::RecordIntake(Project& project, QString projectFolder, bool writesBesideData, QWidget* window)
    : project_(project),
      projectFolder_(std::move(projectFolder)),
      writesBesideData_(writesBesideData),
      window_(window) {}

IntakeResult RecordIntake::Take(const AddFilesParams& record) {
    IntakeResult result;
    result.las = TakeLas(record);
    result.rasters = TakeRasters(record);
    result.dems = TakeDems(record);
    result.mainLayer = MainLayer(result);
    result.status = StatusOf(result);
    return result;
}

QString RecordIntake::StatusOf(const IntakeResult& result) const {
    const auto sum = [&result](std::size_t AddedFiles::*count) {
        return result.las.*count + result.rasters.*count + result.dems.*count;
    };
    QString status =
        sum(&AddedFiles::files) == 0
            ? HostText(text::kStatusNothingAdded)
            : HostText(text::kStatusFilesAdded, {sum(&AddedFiles::files), sum(&AddedFiles::newLayers)});
    if (const std::size_t known = sum(&AddedFiles::alreadyThere); known > 0) {
        status += ' ' + HostText(text::kStatusAlreadyInProject, {known});
    }
    return stopped_ ? status + ' ' + HostText(text::kStatusConversionStopped) : status;
}

AddedFiles RecordIntake::TakeLas(const AddFilesParams& record) {
    const LidarReport found = CheckLidar(project_, record);
    TellLeftOut(found);
    bool stop = false;
    MessageRegardingAddingLidar(reinterpret_cast<HWND>(window_->winId()), Text(text::kHostName),
                                found.appending, found.crsDiffers, found.crsMissing, found.damaged,
                                found.tellSkipped, found.alreadyThere, found.unreadable, stop);
    if (stop || !MayAddLas(record)) {
        return {};
    }
    return project_.Take(LayerKind::Las, LasFilesOf(record, found.skipped));
}

/// Names the files with errors that are not loaded.
void RecordIntake::TellLeftOut(const LidarReport& found) {
    std::vector<FileFailure> files;
    for (const std::wstring& path : found.leftOut) {
        files.push_back({path, path});
    }
    Tell(FormatText(Text(text::kDamagedLeftOut), {Text(text::kLoadCorruptFiles)}), files, text::kHostName);
}

/// Asks the user again before files are opened read-write, as they can then be changed.
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
    if (record.rasterPyramid && writesBesideData_ && !rasters.empty()) {
        BuildPyramids(rasters);
    }
    std::vector<FileFailure> leftOut;
    for (const std::wstring& path : UndescribedRastersOf(record)) {
        leftOut.push_back({path, ReasonForLeavingOut(path)});
    }
    Tell(Text(text::kRastersLeftOut), leftOut, text::kAddFilesTitle);
    return project_.Take(LayerKind::Raster, rasters);
}

void RecordIntake::BuildPyramids(const std::vector<NewFile>& rasters) {
    std::vector<std::wstring> paths;
    std::ranges::transform(rasters, std::back_inserter(paths),
                           [](const NewFile& raster) { return raster.file.path; });
    const auto result = std::make_shared<OverviewResult>();
    const WorkEnd end = WorkDialog::Run(
        window_, HostText(text::kBuildingPyramidsTitle),
        [paths, result](Kst::ProgressIf& progress) { *result = BuildOverviews(paths, progress); });
    if (end == WorkEnd::Finished) {
        Tell(Text(text::kPyramidsFailed), result->failures, text::kBuildingPyramidsTitle);
    }
}

AddedFiles RecordIntake::TakeDems(const AddFilesParams& record) {
    if (record.demFiles.empty()) {
        return {};
    }
    std::wstring folder;
    try {
        folder = DemFolder(record, ToWidePath(projectFolder_));
    } catch (const LDataError& error) {
        Tell(Text(text::kDemConversionFailed), {{record.demLasFolder, error.Text()}},
             text::kDemConversionTitle);
        return {};
    }
    const auto import =
        std::make_shared<DemImport>(DemFilesOf(record), OptionsOf(record, folder), !record.demOpenReadWrite);
    const WorkEnd end = WorkDialog::Run(window_, HostText(text::kDemConversionTitle),
                                        [import](Kst::ProgressIf& progress) { import->Run(progress); });
    const DemImportResult result = import->Result();
    stopped_ = result.stopped || end == WorkEnd::Abandoned;
    Tell(Text(text::kDemConversionFailed), result.failures, text::kDemConversionTitle);
    Tell(Text(text::kDemConversionWarnings), result.warnings, text::kDemConversionTitle);
    return project_.Take(LayerKind::Las, result.files);
}

/// Shows one message for all files of a run; none for an empty list.
void RecordIntake::Tell(const std::wstring& heading, const std::vector<FileFailure>& failures,
                        StringId caption) {
    if (!failures.empty()) {
        UserPromptsQt(window_).Show(
            {FailureText(heading, failures), Text(caption), PromptIcon::Warning, PromptButtons::Ok});
    }
}

}  // namespace orvex
