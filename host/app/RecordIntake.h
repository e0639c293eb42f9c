#pragma once
#include <QString>
#include <optional>
#include <vector>

#include "host/app/RasterJobs.h"
#include "support/Text.h"

class AddFilesParams;
class QWidget;

namespace orvex {

struct LidarReport;

/// Outcome of adding a record's files to the project.
struct IntakeResult {
    AddedFiles las;
    AddedFiles rasters;
    AddedFiles dems;  ///< the LAS files that elevation rasters were converted to
    /// Index of the layer to show; nullopt when nothing was added.
    std::optional<std::size_t> mainLayer;
    QString status;  ///< one line for the user
};

/// Adds the files of the Add Files dialog's record to the project; asks the user, shows progress and reports
/// failures on the way.
class RecordIntake {
  public:
    /// `projectFolder` replaces the project token in folder names. `writesBesideData`: pyramids may be built,
    /// which lie beside their rasters. `window` is the parent of the messages.
    RecordIntake(Project& project, QString projectFolder, bool writesBesideData, QWidget* window);

    IntakeResult Take(const AddFilesParams& record);

  private:
    AddedFiles TakeLas(const AddFilesParams& record);
    AddedFiles TakeRasters(const AddFilesParams& record);
    void TellLeftOut(const LidarReport& found);
    QString StatusOf(const IntakeResult& result) const;
    bool MayAddLas(const AddFilesParams& record);
    void BuildPyramids(const std::vector<NewFile>& rasters);
    AddedFiles TakeDems(const AddFilesParams& record);
    void Tell(const std::wstring& heading, const std::vector<FileFailure>& failures, StringId caption);

    Project& project_;
    QString projectFolder_;
    const bool writesBesideData_;
    QWidget* window_;
    bool stopped_ = false;  ///< the user stopped a conversion
};

}  // namespace orvex
