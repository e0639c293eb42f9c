#pragma once
#include <cstddef>
#include <string>

#include "support/Format.h"
#include "support/Text.h"

namespace orvex {

/// One line per item, each behind a line break, and how many there are beyond those that a message box can
/// show.
template <typename Items, typename ToText>
std::wstring PromptLines(const Items& items, ToText toText) {
    constexpr std::size_t kMostShown = 10;
    std::wstring lines;
    for (std::size_t i = 0; i < items.size() && i < kMostShown; ++i) {
        lines += L"\n" + toText(items[i]);
    }
    if (items.size() > kMostShown) {
        lines += L"\n" + FormatText(Text(text::kMoreItems), {items.size() - kMostShown});
    }
    return lines;
}

}  // namespace orvex
