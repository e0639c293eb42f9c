#include "dialog/grid/GridPanes.h"

#include <QScrollBar>

#include "dialog/grid/GridHeaderView.h"
#include "dialog/grid/GridModel.h"
#include "support/QtText.h"

namespace orvex {

GridPanes::GridPanes(GridDelegate& delegate, UserPrompts& prompts, QWidget* parent)
    : frozen_(new GridTable(GridTable::Pane::Frozen, delegate, prompts, parent)),
      scrolling_(new GridTable(GridTable::Pane::Scrolling, delegate, prompts, parent)) {
    frozen_->setObjectName("frozenTable");
    scrolling_->setObjectName("table");
    frozen_->setAccessibleName(ToQString(Text(text::kGridFixedColumnsAccessibleName)));
    scrolling_->setAccessibleName(ToQString(Text(text::kGridAccessibleName)));
    frozen_->SetMain(scrolling_);
    JoinVertically();
}

void GridPanes::JoinVertically() {
    QScrollBar* main = scrolling_->verticalScrollBar();
    QScrollBar* follower = frozen_->verticalScrollBar();
    QObject::connect(main, &QScrollBar::valueChanged, follower, &QScrollBar::setValue);
    QObject::connect(follower, &QScrollBar::valueChanged, main, &QScrollBar::setValue);
    // A pane that is laid out later than the other one has cut its position to its old range.
    QObject::connect(follower, &QScrollBar::rangeChanged, main,
                     [main, follower] { follower->setValue(main->value()); });
}

GridTable& GridPanes::PaneOf(int column) const {
    return model_->Columns()[static_cast<std::size_t>(column)].frozen ? *frozen_ : *scrolling_;
}

void GridPanes::SetModel(GridModel* model) {
    QItemSelectionModel* const oldSelection = scrolling_->selectionModel();
    model_ = model;
    scrolling_->setModel(model);
    frozen_->setModel(model);
    if (oldSelection) {
        oldSelection->deleteLater();
    }
    if (model) {
        QItemSelectionModel* const own = frozen_->selectionModel();
        frozen_->setSelectionModel(scrolling_->selectionModel());
        own->deleteLater();
        frozen_->Header()->SetUp(*model);
        scrolling_->Header()->SetUp(*model);
        ShowSort(model->SortColumn(), model->SortOrder());
    }
}

void GridPanes::ShowColumns(const std::vector<bool>& shown) {
    const auto columns = model_->Columns();
    for (int i = 0; i < static_cast<int>(columns.size()); ++i) {
        const auto at = static_cast<std::size_t>(i);
        frozen_->setColumnHidden(i, !shown[at] || !columns[at].frozen);
        scrolling_->setColumnHidden(i, !shown[at] || columns[at].frozen);
    }
    ShowSort(model_->SortColumn(), model_->SortOrder());
}

std::vector<int> GridPanes::ShownColumns() const {
    std::vector<int> shown;
    for (const GridTable* pane : Both()) {
        for (int i = 0; i < pane->Header()->count(); ++i) {
            if (!pane->isColumnHidden(i)) {
                shown.push_back(i);
            }
        }
    }
    return shown;
}

bool GridPanes::IsShown(int column) const {
    return model_ && !PaneOf(column).isColumnHidden(column);
}

void GridPanes::ShowSort(int column, Qt::SortOrder order) const {
    frozen_->Header()->ShowSort(column, order);
    scrolling_->Header()->ShowSort(column, order);
}

void GridPanes::UpdateRow(int row) const {
    frozen_->UpdateRow(row);
    scrolling_->UpdateRow(row);
}

}  // namespace orvex
