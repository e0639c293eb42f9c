#include "las/LasPaneState.h"

#include <charconv>

#include "settings/OptionStore.h"

namespace orvex {

namespace {

constexpr const wchar_t* kPlacementName = L"AddLASFilesDetails";
constexpr int kMostPixels = 10000;

}  // namespace

LasPaneState ReadLasPaneState(const OptionStore& store) {
    LasPaneState state;
    const std::optional<std::string> bytes = store.ReadPlacement(kPlacementName);
    if (!bytes.has_value() || bytes->size() < 3 || (*bytes)[1] != ' ') {
        return state;
    }
    int height = 0;
    const char* end = bytes->data() + bytes->size();
    const auto [stop, error] = std::from_chars(bytes->data() + 2, end, height);
    if (error != std::errc() || stop != end || height < 0 || height > kMostPixels) {
        return state;
    }
    return {(*bytes)[0] == 'f', height};
}

void SaveLasPaneState(const OptionStore& store, const LasPaneState& state) {
    store.WritePlacement(kPlacementName,
                         std::string(state.folded ? "f " : "o ") + std::to_string(state.height));
}

}  // namespace orvex
