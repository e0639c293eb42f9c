// The rows of a grid view: selection, current row, copying.
#include <QApplication>
#include <QClipboard>
#include <algorithm>

#include "dialog/grid/GridSelection.h"
#include "dialog/grid/GridText.h"
#include "dialog/grid/GridViewParts.h"
#include "support/HandlerGuard.h"
#include "support/QtText.h"

namespace orvex {
namespace {

/// Those that are shown and the path, by which others find the file.
std::vector<int> CopiedColumns(const GridModel& model, std::vector<int> shown) {
    const auto columns = model.Columns();
    const auto path = std::find_if(columns.begin(), columns.end(), IsPath);
    const auto at = static_cast<int>(path - columns.begin());
    if (path != columns.end() && std::find(shown.begin(), shown.end(), at) == shown.end()) {
        shown.push_back(at);
    }
    return shown;
}

}  // namespace

// What a filter finds begins at the top, unless the current row is among it.
void GridView::ConnectFilter() {
    Parts& p = *parts_;
    connect(p.model, &GridModel::FilterAboutToChange, this,
            Guarded(p.prompts, L"OnFilter", [this] { parts_->currentRecord = CurrentRecord(); }));
    connect(p.model, &GridModel::FilterChanged, this, Guarded(p.prompts, L"OnFilter", [this] {
                GridTable& table = *parts_->table;
                if (parts_->currentRecord == CurrentRecord() && CurrentRow() >= 0) {
                    table.scrollTo(table.currentIndex());
                } else {
                    table.selectionModel()->clearCurrentIndex();
                    table.scrollToTop();
                }
            }));
}

std::optional<std::size_t> GridView::CurrentRecord() const {
    const int row = CurrentRow();
    return row < 0 ? std::nullopt : std::optional(parts_->model->RecordOfRow(row));
}

std::vector<int> GridView::SelectedRows() const {
    const QItemSelectionModel* selection = parts_->table->selectionModel();
    return selection ? RowsOf(selection->selection()) : std::vector<int>();
}

void GridView::SelectRows(const std::vector<int>& rows) {
    if (parts_->model) {
        parts_->table->selectionModel()->select(SelectionOf(*parts_->model, rows),
                                                QItemSelectionModel::ClearAndSelect);
    }
}

void GridView::ClearSelection() {
    parts_->table->clearSelection();
}

void GridView::SelectAll() {
    parts_->table->selectAll();
}

void GridView::RemoveSelection(const std::function<void(const std::vector<std::size_t>&)>& remove) {
    const std::vector<int> rows = SelectedRows();
    if (rows.empty()) {
        return;
    }
    std::vector<std::size_t> records;
    records.reserve(rows.size());
    for (const int row : rows) {
        records.push_back(parts_->model->RecordOfRow(row));
    }
    const QPersistentModelIndex next = parts_->model->index(rows.back() + 1, 0);
    const std::size_t before = parts_->model->Records();
    remove(records);
    if (!parts_->model || parts_->model->Records() == before) {
        return;
    }
    const int row = next.isValid() ? next.row() : parts_->model->rowCount() - 1;
    if (row >= 0) {
        const QModelIndex index = parts_->model->index(row, std::max(parts_->table->columnAt(0), 0));
        parts_->table->selectionModel()->setCurrentIndex(
            index, QItemSelectionModel::ClearAndSelect | QItemSelectionModel::Rows);
    }
}

int GridView::CurrentRow() const {
    return parts_->table->currentIndex().row();
}

void GridView::CopySelection(bool withHeaders) const {
    const std::vector<int> rows = SelectedRows();
    if (!rows.empty()) {
        QApplication::clipboard()->setText(ToQString(
            TabSeparated(*parts_->model, rows, CopiedColumns(*parts_->model, ShownColumns()), withHeaders)));
    }
}

int GridView::SearchColumn() const {
    if (!parts_->model) {
        return -1;
    }
    const int sorted = parts_->model->SortColumn();
    const auto columns = parts_->model->Columns();
    const auto isText = [columns](int column) {
        return columns[static_cast<std::size_t>(column)].kind == CellKind::Text;
    };
    if (sorted >= 0 && IsColumnShown(sorted) && isText(sorted)) {
        return sorted;
    }
    const std::vector<int> shown = parts_->panes.ShownColumns();
    const auto first = std::find_if(shown.begin(), shown.end(), isText);
    return first == shown.end() ? -1 : *first;
}

}  // namespace orvex
