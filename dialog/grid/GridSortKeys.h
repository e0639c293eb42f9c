#pragma once
#include <cstdint>
#include <string>
#include <vector>

#include "support/Column.h"

namespace orvex {

/// Sort keys of one column, by record: computed once, compared often. Numbers and dates sort before texts;
/// empty cells and NaN sort last in both directions.
class GridSortKeys {
  public:
    void Clear();
    void Reserve(std::size_t count);
    void Append(const GridCell& cell);
    /// Removes the keys of these records (ascending, unique) and closes the gaps.
    void Remove(const std::vector<std::size_t>& records);
    /// The key of record `r` becomes that of record `newIndexOf[r]`.
    void Permute(const std::vector<std::size_t>& newIndexOf);
    /// Makes comparing fast until the keys change: worth it before sorting all.
    void Prepare();
    std::size_t Size() const { return kinds_.size(); }

    /// True if record `a` sorts before record `b`; false if they are equal.
    bool Before(std::size_t a, std::size_t b, bool descending) const;

  private:
    enum class Kind : std::uint8_t { Number, Text, Nothing };

    std::vector<Kind> kinds_;
    std::vector<double> numbers_;
    std::vector<std::wstring> texts_;  ///< shorter than the others when the last records have none
    /// What follows the beginning that all texts share, as a number that compares alike; equal ones say
    /// nothing. Empty unless prepared.
    std::vector<std::uint64_t> starts_;
};

/// Erases the elements at these positions (ascending, unique) in one pass.
template <class T>
void EraseAt(std::vector<T>& items, const std::vector<std::size_t>& positions) {
    std::size_t next = 0;
    std::size_t kept = 0;
    for (std::size_t i = 0; i < items.size(); ++i) {
        if (next < positions.size() && positions[next] == i) {
            ++next;
            continue;
        }
        if (kept != i) {
            items[kept] = std::move(items[i]);
        }
        ++kept;
    }
    items.resize(kept);
}

/// Moves the element at each position `i` to `newIndexOf[i]`, a permutation. An empty list stays empty.
template <class T>
void Permute(std::vector<T>& items, const std::vector<std::size_t>& newIndexOf) {
    std::vector<T> moved(items.size());
    for (std::size_t i = 0; i < items.size(); ++i) {
        moved[newIndexOf[i]] = std::move(items[i]);
    }
    items = std::move(moved);
}

}  // namespace orvex
