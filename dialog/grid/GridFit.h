#pragma once
#include <string>
#include <vector>

class QFontMetrics;

namespace orvex {

class GridModel;
class GridTable;

/// Width of a cell beside its text, in pixels.
struct CellRoom {
    int margins = 0;  ///< left and right in total
    int icon = 0;     ///< of an icon with its gap
};

/// That of the cells of a pane.
CellRoom RoomOf(const GridTable& pane);

/// Width of a cell with this text and no icon. Only the first 400 characters count.
int CellWidth(const std::wstring& text, const QFontMetrics& font, const CellRoom& room);

/// Width at which the header (`headerWidth`), the footer and the cells of the given rows are not elided,
/// within the column's limits. Only the first 400 characters of a text count.
int FittedWidth(const GridModel& model, int column, const std::vector<int>& rows, int headerWidth,
                const QFontMetrics& font, const CellRoom& room);

/// Rows to measure: the visible ones (`first` to `last`) and up to `most` others, evenly spaced.
std::vector<int> SpreadRows(int rowCount, int first, int last, int most);

}  // namespace orvex
