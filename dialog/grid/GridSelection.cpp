#include "dialog/grid/GridSelection.h"

#include <algorithm>

namespace orvex {

std::vector<int> RowsOf(const QItemSelection& selection) {
    std::vector<int> rows;
    for (const QItemSelectionRange& range : selection) {
        for (int row = range.top(); row <= range.bottom(); ++row) {
            rows.push_back(row);
        }
    }
    std::sort(rows.begin(), rows.end());
    rows.erase(std::unique(rows.begin(), rows.end()), rows.end());
    return rows;
}

QItemSelection SelectionOf(const QAbstractItemModel& model, const std::vector<int>& rows) {
    QItemSelection selection;
    const int lastColumn = model.columnCount() - 1;
    for (std::size_t i = 0; i < rows.size();) {
        std::size_t end = i + 1;
        while (end < rows.size() && rows[end] == rows[end - 1] + 1) {
            ++end;
        }
        selection.append(
            QItemSelectionRange(model.index(rows[i], 0), model.index(rows[end - 1], lastColumn)));
        i = end;
    }
    return selection;
}

}  // namespace orvex
