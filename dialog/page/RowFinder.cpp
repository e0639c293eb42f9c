#include "dialog/page/RowFinder.h"

#include <QItemSelectionModel>
#include <QTableView>
#include <algorithm>

#include "dialog/grid/GridView.h"
#include "dialog/page/ListModel.h"
#include "dialog/page/ListStatus.h"
#include "support/HandlerGuard.h"

namespace orvex {

RowFinder::RowFinder(GridView& grid, UserPrompts& prompts, const std::vector<QIcon>& images)
    : grid_(grid), prompts_(prompts), status_(new ListStatus(images)) {
    connect(status_, &ListStatus::SelectRequested, this,
            Guarded(prompts_, L"OnSelectCounted", [this](RowProperty property) {
                Select(RowProperties(*rows_).Records(property));
                grid_.setFocus();
            }));
    connect(status_, &ListStatus::RemoveRequested, this,
            Guarded(prompts_, L"OnRemoveCounted", [this](RowProperty property) {
                emit RemoveRequested(RowProperties(*rows_).Records(property));
            }));
}

void RowFinder::Start(ListRows& rows) {
    rows_ = &rows;
    connect(rows_, &GridModel::RecordsChanged, this, Guarded(prompts_, L"ShowCounts", [this] { Update(); }));
}

void RowFinder::Detach() {
    rows_->disconnect(this);
    rows_ = nullptr;
}

void RowFinder::Update() {
    status_->ShowCounts(RowProperties(*rows_));
}

void RowFinder::Select(std::span<const std::size_t> records) {
    const auto rowOf = [this](std::size_t record) { return rows_->RowOfRecord(record); };
    if (std::ranges::any_of(records, [&](std::size_t record) { return rowOf(record) < 0; })) {
        ClearFilter();
    }
    std::vector<int> rows(records.size());
    std::ranges::transform(records, rows.begin(), rowOf);
    std::ranges::sort(rows);
    std::erase_if(rows, [](int row) { return row < 0; });
    grid_.SelectRows(rows);
    if (!rows.empty()) {
        const QModelIndex first = rows_->index(rows.front(), 0);
        grid_.Table()->selectionModel()->setCurrentIndex(first, QItemSelectionModel::NoUpdate);
        grid_.Table()->scrollTo(first);
    }
}

std::size_t RowFinder::HiddenCount() const {
    return rows_->Count() - static_cast<std::size_t>(rows_->rowCount());
}

void RowFinder::ClearFilter() {}

}  // namespace orvex
