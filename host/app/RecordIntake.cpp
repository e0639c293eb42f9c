#include "host/app/RecordIntake.h"

#include <QWidget>
#include <algorithm>
#include <iterator>
#include <set>
#include <utility>

#include "host/app/FeatureJobs.h"
#include "host/app/HostText.h"
#include "host/app/RasterJobs.h"
#include "host/app/RecordCloud.h"
#include "host/app/RecordFeatures.h"
#include "host/app/RecordFiles.h"
#include "host/app/WorkDialog.h"
#include "host/objects/HostClasses.h"
#include "orvexcommon/AddFilesParams.h"
#include "orvexcommon/Exports.h"
#include "orvexcommon/LasFileInfo.h"
#include "support/DesktopQt.h"
#include "support/Format.h"
#include "support/LDataError.h"
#include "support/ProjectPath.h"

namespace orvex {

namespace {

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

/// Of a LAZ file that is opened read-write, the decompressed one is to be writable.
FilesToCheck FilesIn(const AddFilesParams& record) {
    FilesToCheck files;
    for (const auto& [folder, names] : record.lasFiles) {
        for (const std::wstring& name : names) {
            files.read.push_back(JoinPath(folder, name));
        }
    }
    if (record.lasOpenSetting) {
        for (const auto& [path, details] : record.lasFileDetails) {
            files.write.push_back(details->FileName());
        }
    }
    files.refused = UndescribedRastersOf(record);
    return files;
}

}  // namespace

RecordIntake::RecordIntake(Project& project, QString projectFolder, bool writesBesideData, QWidget* window)
    : project_(project),
      projectFolder_(std::move(projectFolder)),
      writesBesideData_(writesBesideData),
      window_(window) {}

IntakeResult RecordIntake::Take(const AddFilesParams& record) {
    LookAtFiles(record);
    TakeLas(record);
    TakeRasters(record);
    TakeDems(record);
    TakeFeatures(record);
    TakePhotos(record);
    TakeCloudLayers(record);
    result_.status = Status(CountFiles(record.lasFiles) + CountFiles(record.rasterFiles) +
                            CountFiles(record.demFiles) + chosenFeatures_ + record.photoFiles.size() +
                            record.presignedUrlLayers.size() + record.cloudLasLayers.size());
    ReportLeftOut();
    return result_;
}

QString RecordIntake::Status(std::size_t chosen) const {
    const std::size_t count = result_.places.size();
    std::set<std::size_t> layers;
    std::ranges::transform(result_.places, std::inserter(layers, layers.end()), &FilePlaces::key_type::first);
    const std::wstring number =
        count == chosen ? GroupedNumber(count) : FormatText(Text(text::kAddedOf), {count, chosen});
    QString status = layers.empty() ? HostText(text::kStatusNothingAdded)
                     : layers.size() == 1
                         ? HostText(text::kAddedToLayer, {number, project_.layers[*layers.begin()].name})
                         : HostText(text::kAddedToLayers, {number, layers.size()});
    if (const std::size_t leftOut = leftOut_.size() + toldLeftOut_.size(); leftOut > 0) {
        status += ' ' + HostText(text::kFilesLeftOut, {leftOut});
    }
    return status + remarks_;
}

/// Index of the layer that got the most files, of any kind, is kept: new layers are appended, so that indexes
/// of earlier ones stay valid.
void RecordIntake::Keep(const AddedFiles& added) {
    result_.places.insert(added.places.begin(), added.places.end());
    for (const std::wstring& path : added.others) {
        toldLeftOut_.push_back({path, Text(text::kLeftOutInProject)});
    }
    if (added.places.size() > mostInLayers_) {
        mostInLayers_ = added.places.size();
        result_.mainLayer = added.mainLayer;
    }
}

/// On a thread, because drives can be slow; meanwhile the window is painted where the dialog was.
void RecordIntake::LookAtFiles(const AddFilesParams& record) {
    const auto found = std::make_shared<CheckedFiles>();
    const WorkEnd end = WorkDialog::Run(window_, HostText(text::kCheckingFiles),
                                        [files = FilesIn(record), found](Kst::ProgressIf& progress) {
                                            *found = CheckFiles(files, progress);
                                        });
    if (end == WorkEnd::Finished) {
        checked_ = *found;
    }
}

void RecordIntake::TakeLas(const AddFilesParams& record) {
    const LidarReport found = CheckLidar(project_, record, checked_.unreadable);
    for (const auto& [path, cause] : found.leftOut) {
        (checked_.unreadable.contains(path) ? leftOut_ : toldLeftOut_).push_back({path, cause});
    }
    // Only what the dialog has not told by name before OK, and the report does not.
    bool stop = false;
    MessageRegardingAddingLidar(reinterpret_cast<HWND>(window_->winId()), Text(text::kHostName),
                                found.appending, found.crsDiffers, false, false, false,
                                found.nothingLeft && found.alreadyThere,
                                found.nothingLeft && found.unreadable, stop);
    if (stop || found.nothingLeft) {
        return;
    }
    const LidarAccess access = LasAccess(record);
    if (access == LidarAccess::NotAtAll) {
        remarks_ += ' ' + HostText(text::kStatusLidarNotAdded);
        return;
    }
    std::vector<NewFile> files = LasFilesOf(record, found.leftOut);
    for (NewFile& file : files) {
        file.file.readOnly = file.file.readOnly || access == LidarAccess::ReadOnly;
    }
    if (record.lasPyramidType == kPyramidQvr && !record.lasLoadSetting && writesBesideData_) {
        BuildCompanions(record, files);
    }
    Keep(project_.Take(LayerKind::Las, files));
}

/// Files whose companions cannot be built are added without.
void RecordIntake::BuildCompanions(const AddFilesParams& record, const std::vector<NewFile>& files) {
    const CompanionCheck check = CompanionsOf(files);
    if (check.stopped) {
        remarks_ += ' ' + HostText(text::kStatusCompanionsStopped);
        return;
    }
    const std::vector<CompanionJob> jobs = CompanionJobsOf(check);
    LasCompanionOptions options;
    options.factor = record.lasThinning < 2 ? options.factor : record.lasThinning;
    if (jobs.empty()) {
        return;
    }
    const auto result = std::make_shared<CompanionResult>();
    const WorkEnd end = WorkDialog::Run(
        window_, HostText(text::kCompanionsTitle),
        [=](Kst::ProgressIf& progress) { *result = orvex::BuildCompanions(jobs, options, progress); });
    if (end == WorkEnd::Abandoned || result->stopped) {
        remarks_ += ' ' + HostText(text::kStatusCompanionsStopped);
    }
    if (end == WorkEnd::Finished) {
        Report(text::kCompanionsFailed, result->failures);
        if (result->built > 0) {
            remarks_ += ' ' + HostText(text::kStatusCompanionsBuilt, {result->built});
        }
    }
}

CompanionCheck RecordIntake::CompanionsOf(const std::vector<NewFile>& files) {
    std::vector<std::wstring> paths;
    std::ranges::transform(files, std::back_inserter(paths),
                           [](const NewFile& file) { return file.file.PointsPath(); });
    const auto check = std::make_shared<CompanionCheck>();
    const WorkEnd end = WorkDialog::Run(
        window_, HostText(text::kCompanionsTitle),
        [paths, check](Kst::ProgressIf& progress) { *check = CheckCompanions(paths, progress); });
    if (end == WorkEnd::Finished) {
        return *check;
    }
    CompanionCheck none;
    none.stopped = true;
    return none;
}

/// Companions to be built, as far as the user agrees; reports those that are there and not used.
std::vector<CompanionJob> RecordIntake::CompanionJobsOf(const CompanionCheck& check) {
    std::vector<CompanionJob> jobs;
    for (const std::wstring& path : check.missing) {
        jobs.push_back({path, false});
    }
    std::vector<FileFailure> unfit = check.stale;
    unfit.insert(unfit.end(), check.unreadable.begin(), check.unreadable.end());
    std::vector<FileFailure> notUsed = check.ofOthers;
    if (!unfit.empty() && ConfirmReplacing(check)) {
        std::ranges::transform(unfit, std::back_inserter(jobs), [](const FileFailure& file) {
            return CompanionJob{file.path, true};
        });
    } else {
        notUsed.insert(notUsed.end(), unfit.begin(), unfit.end());
    }
    Report(text::kCompanionsNotUsed, notUsed);
    return jobs;
}

bool RecordIntake::ConfirmReplacing(const CompanionCheck& check) {
    std::vector<ReportPrompt::Section> sections;
    for (const auto& [heading, files] : {std::pair(text::kCompanionsStaleFiles, &check.stale),
                                         std::pair(text::kCompanionsUnreadable, &check.unreadable)}) {
        if (!files->empty()) {
            sections.push_back(SectionOf(heading, *files));
        }
    }
    const ReportPrompt question{Text(text::kCompanionsTitle), Text(text::kCompanionsStale),
                                std::move(sections), Text(text::kCompanionsReplace),
                                Text(text::kCompanionsKeep)};
    return UserPromptsQt(window_).ShowReport(question) == PromptAnswer::Yes;
}

/// How LAS files are opened. The dialog has asked that; the LiDAR question comes only where its answer can
/// still be another one: a file cannot be written, or an answer is remembered, which then holds.
LidarAccess RecordIntake::LasAccess(const AddFilesParams& record) {
    if (!record.lasOpenSetting) {
        return LidarAccess::ReadOnly;
    }
    const bool isSettled = checked_.canWriteAll && !host::IsLidarAnswerRemembered();
    project_.lidarAccess = isSettled ? LidarAccess::ReadWrite
                                     : static_cast<LidarAccess>(GetAddingLidarChoice(checked_.canWriteAll));
    if (project_.lidarAccess == LidarAccess::ReadOnly) {
        remarks_ += ' ' + HostText(text::kStatusLidarReadOnly);
    }
    return project_.lidarAccess;
}

void RecordIntake::TakeRasters(const AddFilesParams& record) {
    const std::vector<NewFile> rasters = RasterFilesOf(record);
    if (record.rasterPyramid && writesBesideData_ && !rasters.empty()) {
        BuildPyramids(rasters);
    }
    for (const std::wstring& path : UndescribedRastersOf(record)) {
        const std::wstring& reason = checked_.reasonOfRefused[path];
        toldLeftOut_.push_back({path, reason.empty() ? Text(text::kRasterDamagedOrUnsupported) : reason});
    }
    Keep(project_.Take(LayerKind::Raster, rasters));
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
        Report(text::kPyramidsFailed, result->failures);
    }
}

void RecordIntake::TakeDems(const AddFilesParams& record) {
    if (record.demFiles.empty()) {
        return;
    }
    std::wstring folder;
    try {
        folder = DemFolder(record, ToWidePath(projectFolder_));
    } catch (const LDataError& error) {
        for (const AssignedFile& dem : DemFilesOf(record)) {
            leftOut_.push_back({dem.path, error.Text()});
        }
        return;
    }
    const auto import =
        std::make_shared<DemImport>(DemFilesOf(record), OptionsOf(record, folder), !record.demOpenReadWrite);
    const WorkEnd end = WorkDialog::Run(window_, HostText(text::kDemConversionTitle),
                                        [import](Kst::ProgressIf& progress) { import->Run(progress); });
    const DemImportResult result = import->Result();
    if (result.stopped || end == WorkEnd::Abandoned) {
        remarks_ += ' ' + HostText(text::kStatusConversionStopped);
    }
    leftOut_.insert(leftOut_.end(), result.failures.begin(), result.failures.end());
    Report(text::kDemConversionWarnings, result.warnings);
    const AddedFiles added = project_.Take(LayerKind::Las, result.files);
    result_.convertedDems = added.places.size();
    Keep(added);
}

void RecordIntake::TakePhotos(const AddFilesParams& record) {
    if (record.photoFiles.empty()) {
        return;
    }
    try {
        const PhotoTarget target = PhotoTargetOf(record, ToWidePath(projectFolder_));
        const auto import = std::make_shared<PhotoImport>();
        const WorkEnd end = WorkDialog::Run(window_, HostText(text::kPhotoLayerTitle),
                                            [=, paths = record.photoFiles](Kst::ProgressIf& progress) {
                                                *import = ImportPhotos(paths, target, progress);
                                            });
        if (end == WorkEnd::Abandoned || import->layer.stopped) {
            remarks_ += ' ' + HostText(text::kStatusPhotosStopped);
            return;
        }
        TakeImport(*import, target.replace);
    } catch (const LDataError& error) {
        for (const std::wstring& path : record.photoFiles) {
            leftOut_.push_back({path, error.Text()});
        }
    }
}

void RecordIntake::TakeImport(const PhotoImport& import, bool replaces) {
    leftOut_.insert(leftOut_.end(), import.failures.begin(), import.failures.end());
    const PhotoLayerResult& layer = import.layer;
    if (!layer.path.empty()) {
        remarks_ +=
            ' ' + HostText(text::kPhotoLayerWritten, {FileNameOf(layer.path), layer.added, layer.replaced});
    }
    std::ranges::move(SectionsOf(layer.notWritten), std::back_inserter(result_.news));
    Report(text::kPhotosShortened, layer.shortened);
    AddedFiles added = project_.Take(LayerKind::Photo, import.files);
    if (replaces) {
        std::vector<LayerFile> files;
        std::ranges::transform(import.files, std::back_inserter(files), &NewFile::file);
        const FilePlaces known = project_.Update(LayerKind::Photo, files);
        added.mainLayer = added.places.empty() && !known.empty() ? known.begin()->first : added.mainLayer;
        added.places = known;  // the new ones, too
        added.others.clear();
    }
    Keep(added);
}

/// A CAD or KML file counts as the shapefiles that it becomes.
void RecordIntake::TakeFeatures(const AddFilesParams& record) {
    if (record.featureFiles.empty()) {
        return;
    }
    const VectorConversionOptions options{record.featureImportPoints, record.featureImportLines,
                                          record.featureImportPolygons, record.featureImportText,
                                          record.featureOutputFolder};
    const auto import = std::make_shared<FeatureImport>(FeatureFilesOf(record, project_), options);
    const WorkEnd end = WorkDialog::Run(window_, HostText(text::kVectorConversionTitle),
                                        [import](Kst::ProgressIf& progress) { import->Run(progress); });
    const FeatureImportResult result = import->Result();
    if (result.stopped || end == WorkEnd::Abandoned) {
        remarks_ += ' ' + HostText(text::kStatusConversionStopped);
    }
    chosenFeatures_ = result.files.size() + result.failures.size();
    leftOut_.insert(leftOut_.end(), result.failures.begin(), result.failures.end());
    notes_ = result.notes;
    Report(text::kVectorRemarks, result.warnings);
    Keep(project_.Take(LayerKind::Feature, result.files));
}

void RecordIntake::TakeCloudLayers(const AddFilesParams& record) {
    const CloudLayers layers = CloudLayersOf(record, project_);
    Report(text::kCloudLayersRenamed, layers.renamed);
    AddedFiles added = project_.Take(LayerKind::Cloud, layers.files);
    for (std::wstring& url : added.others) {
        url = ShownPath(LayerKind::Cloud, url);
    }
    const FilePlaces renewed = RenewLinks(project_, layers.renewed);
    added.mainLayer = added.places.empty() && !renewed.empty() ? renewed.begin()->first : added.mainLayer;
    added.places.insert(renewed.begin(), renewed.end());
    Keep(added);
}

/// Adds files that are added all the same, with what is the matter.
void RecordIntake::Report(StringId heading, const std::vector<FileFailure>& files) {
    if (!files.empty()) {
        result_.news.push_back(SectionOf(heading, files));
    }
}

void RecordIntake::ReportLeftOut() {
    const std::vector<ReportPrompt::Section> leftOut = SectionsOf(leftOut_);
    result_.news.insert(result_.news.begin(), leftOut.begin(), leftOut.end());
    result_.report = SectionsOf(toldLeftOut_);
    std::ranges::move(SectionsOf(notes_), std::back_inserter(result_.report));
    result_.report.insert(result_.report.begin(), result_.news.begin(), result_.news.end());
}

}  // namespace orvex
