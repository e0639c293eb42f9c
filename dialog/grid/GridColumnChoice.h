#pragma once
#include <map>
#include <optional>
#include <span>
#include <string>
#include <utility>

#include "support/Column.h"

namespace orvex {

/// The user's own choices about a grid's columns, by column name, as they are stored between sessions.
struct GridColumnChoice {
    std::map<std::string, int> widths;  ///< set by dragging, in pixels
    std::map<std::string, bool> shown;  ///< columns that are shown or hidden whatever the detail columns are
    std::string sortColumn;             ///< empty: in the order of adding
    bool sortsDescending = false;

    /// One choice a line.
    std::string ToText() const;
    /// Nullopt if the text is damaged or names a column that is not among these.
    static std::optional<GridColumnChoice> FromText(const std::string& text,
                                                    std::span<const GridColumn> columns);
};

}  // namespace orvex
