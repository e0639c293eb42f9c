#pragma once
#include <optional>
#include <string>

namespace orvex {

class OptionStore;

/// How the details pane was left.
struct LasPaneState {
    bool folded = false;
    int height = 0;  ///< pixels; 0: the usual one

    friend bool operator==(const LasPaneState&, const LasPaneState&) = default;
};

/// The stored state; one that is missing or damaged is that of a fresh machine.
LasPaneState ReadLasPaneState(const OptionStore& store);
void SaveLasPaneState(const OptionStore& store, const LasPaneState& state);

}  // namespace orvex
