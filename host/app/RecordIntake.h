#pragma once
#include <QString>

#include "host/app/Project.h"

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
    bool MayAddLas(const AddFilesParams& record);
    void BuildPyramids(const std::vector<NewFile>& rasters);

    Project& project_;
    QString projectFolder_;
    QWidget* window_;
};

}  // namespace orvex
