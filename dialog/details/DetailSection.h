#pragma once
// What a details pane says, without a widget.
#include <string>
#include <utility>
#include <vector>

#include "support/Text.h"

namespace orvex {

struct DetailField {
    StringId caption;
    std::wstring value;  ///< may have several lines
};

struct DetailSection {
    StringId title;
    std::vector<DetailField> fields;  ///< only those that the file says something of
    bool isBelow = false;             ///< stands under the one before it, not beside it
};

/// A caption per column, and as many cells in each row.
struct DetailTable {
    std::vector<StringId> captions;
    std::vector<std::vector<std::wstring>> rows;
};

/// Adds a field unless the file says nothing of it.
inline void AddField(std::vector<DetailField>& fields, StringId caption, std::wstring value) {
    if (!value.empty()) {
        fields.push_back({caption, std::move(value)});
    }
}

}  // namespace orvex
