#include "dialog/grid/GridHeaderView.h"

#include <QProxyStyle>
#include <QSignalBlocker>
#include <QStyleOptionHeader>
#include <algorithm>

#include "dialog/grid/GridDelegate.h"
#include "dialog/grid/GridModel.h"

namespace orvex {
namespace {

constexpr int kLeastSection = 16;

}  // namespace

/// The style of the program, with captions that begin and end where the texts of the cells below them do.
class GridHeaderView::CaptionStyle final : public QProxyStyle {
  public:
    using QProxyStyle::QProxyStyle;

    void drawControl(ControlElement element, const QStyleOption* option, QPainter* painter,
                     const QWidget* widget) const override {
        const auto* header = qstyleoption_cast<const QStyleOptionHeader*>(option);
        if (element != CE_HeaderLabel || header == nullptr || header->text.isEmpty()) {
            QProxyStyle::drawControl(element, option, painter, widget);
        } else if (const auto* newer = qstyleoption_cast<const QStyleOptionHeaderV2*>(option)) {
            DrawLabel(*newer, painter, widget);
        } else {
            DrawLabel(*header, painter, widget);
        }
    }

    int Indent(const QWidget* header) const {
        return std::max(GridDelegate::TextMargin(this) - pixelMetric(PM_HeaderMargin, nullptr, header), 0);
    }

  private:
    template <typename Option>
    void DrawLabel(Option label, QPainter* painter, const QWidget* header) const {
        label.rect.adjust(Indent(header), 0, -Indent(header), 0);
        QProxyStyle::drawControl(CE_HeaderLabel, &label, painter, header);
    }
};

GridHeaderView::GridHeaderView(const GridDelegate& delegate, QWidget* parent)
    : QHeaderView(Qt::Horizontal, parent), delegate_(delegate), captionStyle_(new CaptionStyle) {
    captionStyle_->setParent(this);
    setStyle(captionStyle_);
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

QSize GridHeaderView::sectionSizeFromContents(int logicalIndex) const {
    const QSize size = QHeaderView::sectionSizeFromContents(logicalIndex);
    return size + QSize(2 * captionStyle_->Indent(this), 0);
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
