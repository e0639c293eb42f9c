#include "dialog/grid/GridHeaderView.h"

#include <QSignalBlocker>
#include <QStyleOptionHeader>

#include "dialog/grid/GridDelegate.h"
#include "dialog/grid/GridModel.h"

namespace orvex {
namespace {

constexpr int kLeastSection = 16;

}  // namespace

GridHeaderView::GridHeaderView(const GridDelegate& delegate, QWidget* parent)
    : QHeaderView(Qt::Horizontal, parent), delegate_(delegate) {
    setSectionsMovable(false);
    setSectionsClickable(true);
    setHighlightSections(false);
    setMinimumSectionSize(kLeastSection);
    setTextElideMode(Qt::ElideRight);
    ShowSort(-1, Qt::AscendingOrder);
    connect(this, &QHeaderView::sectionResized, this,
            [this](int column, int, int width) { KeepLeastWidth(column, width); });
}

void GridHeaderView::SetUp(const GridModel& model) {
    grid_ = &model;
    const auto columns = model.Columns();
    for (int i = 0; i < count() && i < static_cast<int>(columns.size()); ++i) {
        const GridColumn& column = columns[static_cast<std::size_t>(i)];
        setSectionResizeMode(i, column.resizable ? QHeaderView::Interactive : QHeaderView::Fixed);
        if (column.width > 0) {
            resizeSection(i, std::max(column.width, column.minimumWidth));
        }
    }
}

void GridHeaderView::ShowSort(int column, Qt::SortOrder order) {
    const QSignalBlocker quiet(this);
    setSortIndicator(column >= 0 && !isSectionHidden(column) ? column : -1, order);
    viewport()->update();
}

QSize GridHeaderView::sizeHint() const {
    // The same in both panes, whatever captions they have.
    const int height =
        fontMetrics().height() + 2 * style()->pixelMetric(QStyle::PM_HeaderMargin, nullptr, this);
    return {QHeaderView::sizeHint().width(), std::max(height + 2, 22)};
}

void GridHeaderView::initStyleOptionForIndex(QStyleOptionHeader* option, int logicalIndex) const {
    QHeaderView::initStyleOptionForIndex(option, logicalIndex);
    if (grid_) {
        option->icon = delegate_.IconAt(grid_->Columns()[static_cast<std::size_t>(logicalIndex)].headerIcon);
    }
}

void GridHeaderView::KeepLeastWidth(int column, int width) {
    if (!grid_ || isSectionHidden(column) || column >= static_cast<int>(grid_->Columns().size())) {
        return;
    }
    const int least = grid_->Columns()[static_cast<std::size_t>(column)].minimumWidth;
    if (width > 0 && width < least) {
        resizeSection(column, least);
    }
}

}  // namespace orvex
