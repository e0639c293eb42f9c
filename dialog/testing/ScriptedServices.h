#pragma once
#include "dialog/DialogServices.h"
#include "settings/OptionStore.h"
#include "settings/testing/FakeHostObjects.h"
#include "settings/testing/FakeRegistry.h"
#include "support/testing/Scripted.h"

namespace orvex::testing {

/// What the dialog and its pages ask for, answered by scripts and kept in memory; a base of test fixtures.
struct ScriptedServices {
    ScriptedPrompts prompts;
    ScriptedPickers pickers;
    RecordingHelpViewer help;
    FakeRegistry registry;
    FakeHostObjects hostObjects;
    OptionStore options{registry};
    DialogServices services{prompts, pickers, help, options, hostObjects};
};

}  // namespace orvex::testing
