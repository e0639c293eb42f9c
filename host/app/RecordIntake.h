#pragma once
#include <QString>
#include <optional>
#include <vector>

#include "host/app/CompanionJobs.h"
#include "host/app/PhotoJobs.h"
#include "host/app/RasterJobs.h"
#include "support/Text.h"

class AddFilesParams;
class QWidget;

namespace orvex {

/// Outcome of adding a record's files to the project.
struct IntakeResult {
    FilePlaces places;  ///< of the files that were added
    /// Index of the layer to show; nullopt when nothing was added.
    std::optional<std::size_t> mainLayer;
    std::size_t convertedDems = 0;  ///< LAS files that elevation rasters were converted to
    QString status;                 ///< one line: files, layers, files left out
    /// Names and reasons, for files that were left out or lack something.
    std::vector<ReportPrompt::Section> report;
    /// Those of the report that the dialog could not tell before OK.
    std::vector<ReportPrompt::Section> news;
};

/// Adds the files of the Add Files dialog's record to the project; asks the user and shows progress on the
/// way. For one record.
class RecordIntake {
  public:
    /// `projectFolder` replaces the project token in folder names. `writesBesideData`: pyramids and
    /// companions may be built, which lie beside their files. `window` is the parent of questions and
    /// progress.
    RecordIntake(Project& project, QString projectFolder, bool writesBesideData, QWidget* window);

    IntakeResult Take(const AddFilesParams& record);

  private:
    void LookAtFiles(const AddFilesParams& record);
    void TakeLas(const AddFilesParams& record);
    void BuildCompanions(const AddFilesParams& record, const std::vector<NewFile>& files);
    CompanionCheck CompanionsOf(const std::vector<NewFile>& files);
    std::vector<CompanionJob> CompanionJobsOf(const CompanionCheck& check);
    bool ConfirmReplacing(const CompanionCheck& check);
    void TakeRasters(const AddFilesParams& record);
    void TakeDems(const AddFilesParams& record);
    void TakeFeatures(const AddFilesParams& record);
    void TakePhotos(const AddFilesParams& record);
    void TakeCloudLayers(const AddFilesParams& record);
    void TakeImport(const PhotoImport& import, bool replaces);
    LidarAccess LasAccess(const AddFilesParams& record);
    void BuildPyramids(const std::vector<NewFile>& rasters);
    void Keep(const AddedFiles& added);
    void Report(StringId heading, const std::vector<FileFailure>& files);
    void ReportLeftOut();
    QString Status(std::size_t chosen) const;

    Project& project_;
    QString projectFolder_;
    const bool writesBesideData_;
    QWidget* window_;
    CheckedFiles checked_;
    IntakeResult result_;
    std::size_t chosenFeatures_ = 0;        ///< shapefiles, and files that did not become any
    std::size_t mostInLayers_ = 0;          ///< files that one kind of data brought
    std::vector<FileFailure> leftOut_;      ///< files of the record that are not added
    std::vector<FileFailure> notes_;        ///< about files that are added all the same, for the report only
    std::vector<FileFailure> toldLeftOut_;  ///< further ones, of which the dialog has told
    QString remarks_;                       ///< for the status
};

}  // namespace orvex
