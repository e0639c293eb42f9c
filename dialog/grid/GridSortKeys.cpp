#include "dialog/grid/GridSortKeys.h"

#include <algorithm>
#include <cmath>
#include <string_view>

#include "support/NaturalOrder.h"

namespace orvex {
namespace {

/// Length of the beginning that all texts but the empty ones have in common.
std::size_t SharedLength(const std::vector<std::wstring>& texts) {
    const std::wstring* first = nullptr;
    std::size_t shared = 0;
    for (const std::wstring& text : texts) {
        if (text.empty()) {
            continue;
        }
        if (first == nullptr) {
            first = &text;
            shared = text.size();
        }
        shared = std::min(shared, text.size());
        const auto end = text.begin() + static_cast<std::ptrdiff_t>(shared);
        shared =
            static_cast<std::size_t>(std::mismatch(text.begin(), end, first->begin()).first - text.begin());
    }
    return shared;
}

/// The first eight characters, one a byte. From the first one that does not fit into a byte on, nothing is
/// told apart.
std::uint64_t StartOf(std::wstring_view text) {
    constexpr std::uint64_t kBeyond = 0xFF;
    std::uint64_t start = 0;
    bool fits = true;
    for (std::size_t i = 0; i < sizeof start; ++i) {
        const std::uint64_t character = i < text.size() ? static_cast<std::uint32_t>(text[i]) : 0;
        fits = fits && character < kBeyond;
        start = start << 8 | (fits ? character : kBeyond);
    }
    return start;
}

}  // namespace

void GridSortKeys::Clear() {
    kinds_ = {};
    numbers_ = {};
    texts_ = {};
    starts_ = {};
}

void GridSortKeys::Reserve(std::size_t count) {
    kinds_.reserve(count);
    numbers_.reserve(count);
}

void GridSortKeys::Append(const GridCell& cell) {
    starts_.clear();
    Kind kind = Kind::Nothing;
    double number = 0;
    if (const auto* text = std::get_if<std::wstring>(&cell)) {
        if (!text->empty()) {
            kind = Kind::Text;
            texts_.resize(kinds_.size());
            texts_.push_back(NaturalKey(*text));
        }
    } else if (const auto* value = std::get_if<double>(&cell)) {
        kind = std::isnan(*value) ? Kind::Nothing : Kind::Number;
        number = *value;
    } else if (const auto* time = std::get_if<std::int64_t>(&cell)) {
        kind = Kind::Number;
        number = static_cast<double>(*time);
    }
    kinds_.push_back(kind);
    numbers_.push_back(number);
}

void GridSortKeys::Remove(const std::vector<std::size_t>& records) {
    starts_.clear();
    EraseAt(kinds_, records);
    EraseAt(numbers_, records);
    EraseAt(texts_, records);
}

void GridSortKeys::Permute(const std::vector<std::size_t>& newIndexOf) {
    starts_.clear();
    texts_.resize(kinds_.size());
    orvex::Permute(kinds_, newIndexOf);
    orvex::Permute(numbers_, newIndexOf);
    orvex::Permute(texts_, newIndexOf);
}

void GridSortKeys::Prepare() {
    const std::size_t shared = SharedLength(texts_);
    starts_.assign(kinds_.size(), 0);
    for (std::size_t i = 0; i < texts_.size(); ++i) {
        starts_[i] = texts_[i].empty() ? 0 : StartOf(std::wstring_view(texts_[i]).substr(shared));
    }
}

bool GridSortKeys::Before(std::size_t a, std::size_t b, bool descending) const {
    if (kinds_[a] == Kind::Nothing || kinds_[b] == Kind::Nothing) {
        return kinds_[a] < kinds_[b];
    }
    if (descending) {
        std::swap(a, b);
    }
    if (kinds_[a] != kinds_[b]) {
        return kinds_[a] < kinds_[b];
    }
    if (kinds_[a] == Kind::Number) {
        return numbers_[a] < numbers_[b];
    }
    if (!starts_.empty() && starts_[a] != starts_[b]) {
        return starts_[a] < starts_[b];
    }
    return texts_[a] < texts_[b];
}

}  // namespace orvex
