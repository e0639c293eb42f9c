#include "support/NaturalOrder.h"

#include <algorithm>
#include <cstdint>
#include <utility>
#include <vector>

#include "support/Text.h"

namespace orvex {
namespace {

bool IsDigit(wchar_t c) {
    return c >= L'0' && c <= L'9';
}

// Separators sort before everything else, so that "a/x" comes before "a b/x".
std::uint32_t Rank(wchar_t c) {
    return c == L'/' || c == L'\\' ? 0 : static_cast<std::uint32_t>(c);
}

// The run of digits at the head, without leading zeros; takes it off.
std::wstring_view TakeNumber(std::wstring_view& text) {
    std::size_t end = 0;
    while (end < text.size() && IsDigit(text[end])) {
        ++end;
    }
    std::wstring_view number = text.substr(0, end);
    text.remove_prefix(end);
    number.remove_prefix(std::min(number.find_first_not_of(L'0'), number.size()));
    return number;
}

// -1, 0 or 1; of texts in upper case.
int CompareNatural(std::wstring_view a, std::wstring_view b) {
    while (!a.empty() && !b.empty()) {
        if (IsDigit(a.front()) && IsDigit(b.front())) {
            const std::wstring_view left = TakeNumber(a);
            const std::wstring_view right = TakeNumber(b);
            if (left.size() != right.size()) {
                return left.size() < right.size() ? -1 : 1;
            }
            if (const int order = left.compare(right); order != 0) {
                return order < 0 ? -1 : 1;
            }
            continue;
        }
        const std::uint32_t left = Rank(a.front());
        const std::uint32_t right = Rank(b.front());
        if (left != right) {
            return left < right ? -1 : 1;
        }
        a.remove_prefix(1);
        b.remove_prefix(1);
    }
    return a.empty() == b.empty() ? 0 : (a.empty() ? -1 : 1);
}

}  // namespace

bool NaturalLess(std::wstring_view a, std::wstring_view b) {
    const int order = CompareNatural(ToUpper(a), ToUpper(b));
    return order != 0 ? order < 0 : a < b;
}

void SortNaturally(std::span<std::wstring> texts) {
    std::vector<std::pair<std::wstring, std::wstring>> keyed;  // upper case, computed once per text
    keyed.reserve(texts.size());
    for (std::wstring& text : texts) {
        std::wstring key = ToUpper(text);
        keyed.emplace_back(std::move(key), std::move(text));
    }
    std::sort(keyed.begin(), keyed.end(), [](const auto& a, const auto& b) {
        const int order = CompareNatural(a.first, b.first);
        return order != 0 ? order < 0 : a.second < b.second;
    });
    std::transform(keyed.begin(), keyed.end(), texts.begin(),
                   [](auto& entry) { return std::move(entry.second); });
}

}  // namespace orvex
