#include "dialog/grid/GridSearchText.h"

#include <algorithm>
#include <functional>

#include "dialog/grid/GridSortKeys.h"
#include "dialog/grid/GridText.h"
#include "support/Text.h"

namespace orvex {
namespace {

// Nobody reads further in a cell, and a few columns hold pages of text.
constexpr std::size_t kLongestSearched = 2000;

}  // namespace

std::string GridSearchText::Folded(std::wstring_view text) {
    return ToUtf8(ToUpper(OnOneLine(std::wstring(text))));
}

std::string_view GridSearchText::TextAt(std::size_t number) const {
    const std::size_t begin = number == 0 ? 0 : ends_[number - 1] + 1;
    return std::string_view(texts_).substr(begin, ends_[number] - begin);
}

std::uint32_t GridSearchText::NumberFor(const std::string& text) {
    const auto next = static_cast<std::uint32_t>(ends_.size());
    const auto [known, isNew] = byHash_.try_emplace(std::hash<std::string>()(text), next);
    if (!isNew && TextAt(known->second) == text) {
        return known->second;
    }
    texts_ += text;
    ends_.push_back(texts_.size());
    texts_.push_back('\n');
    return next;
}

void GridSearchText::Append(std::wstring_view text) {
    numbers_.push_back(NumberFor(Folded(text.substr(0, kLongestSearched))));
}

void GridSearchText::Remove(const std::vector<std::size_t>& records) {
    EraseAt(numbers_, records);
}

std::vector<std::uint8_t> GridSearchText::TextsWith(std::string_view folded) const {
    std::vector<std::uint8_t> with(ends_.size(), 0);
    const std::boyer_moore_horspool_searcher searcher(folded.begin(), folded.end());
    const std::string_view all(texts_);
    for (auto from = all.begin();;) {
        const auto hit = std::search(from, all.end(), searcher);
        if (hit == all.end()) {
            return with;
        }
        const auto at = static_cast<std::size_t>(hit - all.begin());
        const auto text = std::upper_bound(ends_.begin(), ends_.end(), at);
        with[static_cast<std::size_t>(text - ends_.begin())] = 1;
        from = all.begin() + static_cast<std::ptrdiff_t>(*text);
    }
}

}  // namespace orvex
