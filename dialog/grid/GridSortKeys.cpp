#include "dialog/grid/GridSortKeys.h"

#include <cmath>

namespace orvex {
namespace {

bool IsDigit(wchar_t c) {
    return c >= L'0' && c <= L'9';
}

}  // namespace

std::wstring NaturalKey(std::wstring_view text) {
    const std::wstring upper = ToUpper(text);
    std::wstring key;
    key.reserve(upper.size() + 4);
    for (std::size_t i = 0; i < upper.size();) {
        if (!IsDigit(upper[i])) {
            key.push_back(upper[i++]);
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

void GridSortKeys::Clear() {
    kinds_ = {};
    numbers_ = {};
    texts_ = {};
}

void GridSortKeys::Reserve(std::size_t count) {
    kinds_.reserve(count);
    numbers_.reserve(count);
}

void GridSortKeys::Append(const GridCell& cell) {
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
    EraseAt(kinds_, records);
    EraseAt(numbers_, records);
    EraseAt(texts_, records);
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
    return kinds_[a] == Kind::Number ? numbers_[a] < numbers_[b] : texts_[a] < texts_[b];
}

}  // namespace orvex
