#pragma once
// How LiDAR data is added: the decision and the messages, without a window.
#include <functional>
#include <string>

#include "orvexcommon/AddLidarChoice.h"

namespace orvex {

class OptionStore;
class UserPrompts;

/// What the dialog says. Cancel gives the choice that it started with, and no memory.
struct LidarAnswer {
    AddLidarChoice choice = ADD_LIDAR_READ_ONLY;
    bool doNotAskAgain = false;
};

/// The stored answer when there is one, else what `ask` says. An answer that is to be kept is stored as
/// read-write or read-only: a user who keeps "not at all" gets read-only from then on.
AddLidarChoice DecideAddingLidar(const OptionStore& options, bool readWriteAllowed,
                                 const std::function<LidarAnswer(bool readWriteAllowed)>& ask);

/// The host's findings about the files to be added, in the order of the exported function.
struct LidarFindings {
    bool a = false;  ///< files are appended to layers that exist
    bool b = false;  ///< the CRS of files differ
    bool c = false;  ///< files have no CRS
    bool d = false;  ///< the header of a file cannot be true
    bool e = false;  ///< the user is to be told of files that are skipped
    bool f = false;  ///< files are in the project already
    bool g = false;  ///< files can no longer be opened
};

/// Shows the messages that follow from the findings. True when nothing may be added.
bool ShowLidarMessages(const LidarFindings& findings, const std::wstring& caption, UserPrompts& prompts);

}  // namespace orvex
