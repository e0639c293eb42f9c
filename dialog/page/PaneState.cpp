#include "dialog/page/PaneState.h"

#include <charconv>
#include <optional>
#include <string>

#include "settings/OptionStore.h"

namespace orvex {

namespace {

constexpr int kMostPixels = 10000;

}  // namespace

PaneState ReadPaneState(const OptionStore& store, const wchar_t* name) {
    const std::optional<std::string> bytes = store.ReadPlacement(name);
    if (!bytes.has_value() || bytes->size() < 3 || (*bytes)[1] != ' ') {
        return {};
    }
    int height = 0;
    const char* end = bytes->data() + bytes->size();
    const auto [stop, error] = std::from_chars(bytes->data() + 2, end, height);
    if (error != std::errc() || stop != end || height < 0 || height > kMostPixels) {
        return {};
    }
    return {(*bytes)[0] == 'f', height};
}

void SavePaneState(const OptionStore& store, const wchar_t* name, const PaneState& state) {
    store.WritePlacement(name, std::string(state.folded ? "f " : "o ") + std::to_string(state.height));
}

}  // namespace orvex
