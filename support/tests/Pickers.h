#pragma once
#include "support/FilePickers.h"

namespace orvex::testing {

/// Picks files as a person who types names into the dialog and confirms; no names: who cancels.
PickedFiles PickTyping(const OpenFilesRequest& request, const std::string& names);

}  // namespace orvex::testing
