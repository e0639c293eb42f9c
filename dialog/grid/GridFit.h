#pragma once
#include <vector>

class QFontMetrics;

namespace orvex {

class GridModel;

/// What a cell needs beside its text.
struct CellRoom {
    int margins = 0;  ///< left and right of the text together
    int icon = 0;     ///< of a cell with an icon, with its gap
};

/// The width at which the header (`headerWidth`), the footer and the cells of the given rows show whole,
/// within the column's limits. A text too long for any screen is cut all the same.
int FittedWidth(const GridModel& model, int column, const std::vector<int>& rows, int headerWidth,
                const QFontMetrics& font, const CellRoom& room);

/// Rows to look at: those in sight (`first` to `last`) and up to `most` more, evenly spread.
std::vector<int> SpreadRows(int rowCount, int first, int last, int most);

}  // namespace orvex
