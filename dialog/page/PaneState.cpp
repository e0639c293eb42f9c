#include "dialog/page/PaneState.h"

#include <charconv>

namespace orvex {

std::string PaneStateText(const PaneState& state) {
    return (state.folded ? "f " : "o ") + std::to_string(state.height);
}

PaneState ParsePaneState(const std::string& text) {
    constexpr int kMostHeight = 10000;
    if (text.size() < 3 || text[1] != ' ') {
        return {};
    }
    int height = 0;
    const char* end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(text.data() + 2, end, height);
    if (error != std::errc() || stop != end || height < 0 || height > kMostHeight) {
        return {};
    }
    return {text[0] == 'f', height > 0 ? height : PaneState().height};
}

}  // namespace orvex
