#pragma once

namespace orvex {

class FilePickers;
class HelpViewer;
class HostObjects;
class OptionStore;
class UserPrompts;

/// What the dialogs need from outside; made by the entry layer, faked by tests. Every member outlives the
/// dialogs.
struct DialogServices {
    UserPrompts& prompts;
    FilePickers& pickers;
    HelpViewer& help;
    const OptionStore& options;
    HostObjects& hostObjects;
};

}  // namespace orvex
