#pragma once
#include "support/Drives.h"

namespace orvex {

class FilePickers;
class HelpViewer;
class HostObjects;
class OptionStore;
class UserPrompts;

/// External services of the dialogs, provided by the entry layer and faked in tests. Every object that is
/// referred to outlives the dialogs.
struct DialogServices {
    UserPrompts& prompts;
    FilePickers& pickers;
    HelpViewer& help;
    const OptionStore& options;
    HostObjects& hostObjects;
    DriveAccess drives = {};
};

}  // namespace orvex
