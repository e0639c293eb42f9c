#pragma once
#include <string>

namespace orvex {

/// How a details pane was left.
struct PaneState {
    bool folded = false;
    int height = 250;  ///< pixels, of the unfolded pane
};

/// "f 250": folded or open ("o"), and the height.
std::string PaneStateText(const PaneState& state);

/// A text that is missing or damaged gives the state of a fresh machine.
PaneState ParsePaneState(const std::string& text);

}  // namespace orvex
