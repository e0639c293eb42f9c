#pragma once
#include <vector>

class QFontMetrics;

namespace orvex {

class GridModel;

/// Width of a cell beside its text, in pixels.
struct CellRoom {
    int margins = 0;  ///< left and right in total
    int icon = 0;     ///< of an icon with its gap
};

/// Width at which the header (`headerWidth`), the footer and the cells of the given rows are not elided,
/// within the column's limits. Only the first 400 characters of a text count.
int FittedWidth(const GridModel& model, int column, const std::vector<int>& rows, int headerWidth,
                const QFontMetrics& font, const CellRoom& room);

/// Rows to measure: the visible ones (`first` to `last`) and up to `most` others, evenly spaced.
std::vector<int> SpreadRows(int rowCount, int first, int last, int most);

}  // namespace orvex
