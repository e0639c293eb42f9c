#include "dialog/grid/GridSortKeys.h"

#include <cmath>

#include "support/NaturalOrder.h"

namespace orvex {
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

void GridSortKeys::Permute(const std::vector<std::size_t>& newIndexOf) {
    texts_.resize(kinds_.size());
    orvex::Permute(kinds_, newIndexOf);
    orvex::Permute(numbers_, newIndexOf);
    orvex::Permute(texts_, newIndexOf);
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
