#pragma once
#include <QItemSelection>
#include <vector>

namespace orvex {

/// Rows of a selection of whole rows, ascending.
std::vector<int> RowsOf(const QItemSelection& selection);

/// Selection of whole rows (given in ascending order), in as few ranges as possible.
QItemSelection SelectionOf(const QAbstractItemModel& model, const std::vector<int>& rows);

}  // namespace orvex
