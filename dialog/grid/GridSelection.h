#pragma once
#include <QItemSelection>
#include <vector>

namespace orvex {

/// The rows of a selection of whole rows, ascending.
std::vector<int> RowsOf(const QItemSelection& selection);

/// The selection of whole rows (ascending), as few ranges as possible.
QItemSelection SelectionOf(const QAbstractItemModel& model, const std::vector<int>& rows);

}  // namespace orvex
