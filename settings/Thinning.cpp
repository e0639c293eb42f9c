#include "settings/Thinning.h"

#include <algorithm>

namespace orvex {

std::optional<std::int32_t> ParseThinning(std::wstring_view text, std::size_t most) {
    text = text.substr(0, most);
    const std::size_t start = text.find_first_not_of(L" \t");
    text.remove_prefix(start == std::wstring_view::npos ? text.size() : start);
    if (text.starts_with(L'+')) {
        text.remove_prefix(1);
    }
    std::int64_t value = 0;  // 18 digits fit
    for (const wchar_t character : text) {
        if (character < L'0' || character > L'9') {
            break;
        }
        value = value * 10 + (character - L'0');
    }
    if (value < kMinimumThinning) {
        return std::nullopt;
    }
    return static_cast<std::int32_t>(std::min<std::int64_t>(value, kMaximumThinning));
}

}  // namespace orvex
