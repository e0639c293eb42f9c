#pragma once
#include <QString>
#include <optional>
#include <vector>

#include "host/app/RasterJobs.h"
#include "support/Text.h"

class AddFilesParams;
class QWidget;

namespace orvex {

/// What became of a record.
struct IntakeResult {
    AddedFiles las;
    AddedFiles rasters;
    AddedFiles dems;  ///< the LAS files that elevation rasters were converted to
    /// Place of the layer to be shown; none when nothing was added.
    std::optional<std::size_t> mainLayer;
    QString status;  ///< one line for the user
};

/// Takes what the Add Files dialog handed back into the project, with the questions, the progress and the
/// messages that belong to it.
class RecordIntake {
  public:
    /// `projectFolder` is where the token of folder texts leads to. `window` owns the messages.
    RecordIntake(Project& project, QString projectFolder, QWidget* window);

    IntakeResult Take(const AddFilesParams& record);

  private:
    AddedFiles TakeLas(const AddFilesParams& record);
    AddedFiles TakeRasters(const AddFilesParams& record);
    QString StatusOf(const IntakeResult& result) const;
    bool MayAddLas(const AddFilesParams& record);
    void BuildPyramids(const std::vector<NewFile>& rasters);
    AddedFiles TakeDems(const AddFilesParams& record);
    void Tell(const std::wstring& heading, const std::vector<FileFailure>& failures, StringId caption);

    Project& project_;
    QString projectFolder_;
    QWidget* window_;
    bool stopped_ = false;  ///< the user stopped a conversion
};

}  // namespace orvex
