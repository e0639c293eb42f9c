#pragma once
// How LiDAR data is added: the decision and the messages, without a window.
#include <functional>
#include <string>

#include "orvexcommon/AddLidarChoice.h"

namespace orvex {

class OptionStore;
class UserPrompts;

/// Result of the dialog. Cancel returns the initial choice and does not ask for it to be remembered.
struct LidarAnswer {
    AddLidarChoice choice = ADD_LIDAR_READ_ONLY;
    bool doNotAskAgain = false;
};

/// Returns the stored answer if there is one, otherwise that of `ask`. An answer to be remembered is stored
/// as read-write or read-only: a user who has "not at all" remembered gets read-only from then on.
AddLidarChoice DecideAddingLidar(const OptionStore& options, bool readWriteAllowed,
                                 const std::function<LidarAnswer(bool readWriteAllowed)>& ask);

/// The host's findings about the files to be added, in the order of the exported function.
struct LidarFindings {
    bool a = false;  ///< files are appended to layers that exist
    bool b = false;  ///< the files have different CRSs
    bool c = false;  ///< files have no CRS
    bool d = false;  ///< the header of a file is inconsistent
    bool e = false;  ///< skipped files are to be reported to the user
    bool f = false;  ///< files are in the project already
    bool g = false;  ///< files can no longer be opened
};

/// True if every file is in the project already or can no longer be opened.
inline bool IsNothingToAdd(const LidarFindings& findings) {
    return findings.f && findings.g;
}

/// Shows the messages for the findings.
void ShowLidarMessages(const LidarFindings& findings, const std::wstring& caption, UserPrompts& prompts);

}  // namespace orvex
