#pragma once
// What the user is told before the files of a page are added.
#include <cstddef>
#include <string>
#include <vector>

namespace orvex {

class ListRows;

/// Files that are odd in one way.
struct OddFiles {
    std::wstring heading;
    std::vector<std::wstring> lines;   ///< a file each, with the reason
    std::vector<std::size_t> records;  ///< of those that are listed
};

struct AddingReview {
    std::size_t added = 0;  ///< files that the host gets
    std::size_t left = 0;   ///< files that it does not get
    std::vector<OddFiles> odd;
};

/// What differs between pages.
struct ReviewRules {
    bool passesUnreadable = false;     ///< the host gets files that cannot be loaded too
    std::wstring damagedNote;          ///< what becomes of files with errors; empty: they are added
    std::vector<std::wstring> unread;  ///< paths that have not been looked at
};

AddingReview ReviewOf(const ListRows& rows, const ReviewRules& rules);

}  // namespace orvex
