#include "support/NaturalOrder.h"

#include <algorithm>
#include <utility>
#include <vector>

#include "support/Text.h"

namespace orvex {
namespace {

bool IsDigit(wchar_t c) {
    return c >= L'0' && c <= L'9';
}

// Separators sort before everything else, so that "a/x" comes before "a b/x".
wchar_t Rank(wchar_t c) {
    return c == L'/' || c == L'\\' ? L'\0' : c;
}

}  // namespace

std::wstring NaturalKey(std::wstring_view text) {
    const std::wstring upper = ToUpper(text);
    std::wstring key;
    key.reserve(upper.size() + 4);
    for (std::size_t i = 0; i < upper.size();) {
        if (!IsDigit(upper[i])) {
            key.push_back(Rank(upper[i++]));
            continue;
        }
        while (i + 1 < upper.size() && upper[i] == L'0' && IsDigit(upper[i + 1])) {
            ++i;
        }
        std::size_t end = i;
        while (end < upper.size() && IsDigit(upper[end])) {
            ++end;
        }
        // The longer of two numbers is the larger one. The leading "0" keeps numbers where digits stand among
        // the other characters.
        key.push_back(L'0');
        key.push_back(static_cast<wchar_t>(end - i));
        key.append(upper, i, end - i);
        i = end;
    }
    return key;
}

bool NaturalLess(std::wstring_view a, std::wstring_view b) {
    const int order = NaturalKey(a).compare(NaturalKey(b));
    return order != 0 ? order < 0 : a < b;
}

void SortNaturally(std::span<std::wstring> texts) {
    std::vector<std::pair<std::wstring, std::wstring>> keyed;  // keys, computed once per text
    keyed.reserve(texts.size());
    for (std::wstring& text : texts) {
        std::wstring key = NaturalKey(text);
        keyed.emplace_back(std::move(key), std::move(text));
    }
    std::sort(keyed.begin(), keyed.end());
    std::transform(keyed.begin(), keyed.end(), texts.begin(),
                   [](auto& entry) { return std::move(entry.second); });
}

}  // namespace orvex
