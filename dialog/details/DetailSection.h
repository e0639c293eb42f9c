#pragma once
// What a details pane says, without a widget.
#include <string>
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
};

}  // namespace orvex
