#pragma once

namespace orvex {

class OptionStore;

/// How a page's details pane was left.
struct PaneState {
    bool folded = false;
    int height = 0;  ///< pixels; 0: the usual one

    friend bool operator==(const PaneState&, const PaneState&) = default;
};

/// The state stored under a name; one that is missing or damaged is that of a fresh machine.
PaneState ReadPaneState(const OptionStore& store, const wchar_t* name);
void SavePaneState(const OptionStore& store, const wchar_t* name, const PaneState& state);

}  // namespace orvex
