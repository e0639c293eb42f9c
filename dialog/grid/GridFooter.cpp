#include "dialog/grid/GridFooter.h"

#include <QPainter>

#include "dialog/grid/GridColours.h"
#include "dialog/grid/GridDelegate.h"
#include "dialog/grid/GridHeaderView.h"
#include "dialog/grid/GridModel.h"
#include "dialog/grid/GridTable.h"
#include "support/QtText.h"

namespace orvex {

GridFooter::GridFooter(GridTable* frozen, GridTable* scrolling, QWidget* parent)
    : QWidget(parent), frozen_(frozen), scrolling_(scrolling) {
    setFocusPolicy(Qt::NoFocus);
    setAutoFillBackground(false);
    setAttribute(Qt::WA_OpaquePaintEvent);
    for (const GridTable* table : {frozen, scrolling}) {
        connect(table->Header(), &QHeaderView::sectionResized, this, qOverload<>(&QWidget::update));
        connect(table->Header(), &QHeaderView::geometriesChanged, this, qOverload<>(&QWidget::update));
    }
}

void GridFooter::SetModel(const GridModel* model) {
    if (model_) {
        disconnect(model_, nullptr, this, nullptr);
    }
    model_ = model;
    if (model_) {
        connect(model_, &GridModel::RecordsChanged, this, qOverload<>(&QWidget::update));
    }
    update();
}

QRect GridFooter::PaneRect(const GridTable& table) const {
    if (table.isHidden()) {
        return {};
    }
    const int left = table.x() - x();
    return {left, 0, table.viewport()->width(), height()};
}

QRect GridFooter::WholeCell(const GridTable& table, int column) const {
    const GridHeaderView& header = *table.Header();
    return {PaneRect(table).left() + header.sectionViewportPosition(column), 0, header.sectionSize(column),
            height()};
}

QRect GridFooter::CellRect(int column) const {
    const GridTable& table = frozen_->Header()->isSectionHidden(column) ? *scrolling_ : *frozen_;
    return WholeCell(table, column) & PaneRect(table);
}

void GridFooter::paintEvent(QPaintEvent*) {
    const FooterColours colours = FooterColoursFor(palette());
    QPainter painter(this);
    painter.fillRect(rect(), colours.ground);
    painter.setPen(Mixed(colours.ground, colours.text, 0.35));
    painter.drawLine(0, 0, width(), 0);
    if (!model_) {
        return;
    }
    painter.setPen(colours.text);
    PaintPane(painter, *frozen_);
    PaintPane(painter, *scrolling_);
}

void GridFooter::PaintPane(QPainter& painter, const GridTable& table) const {
    const QRect pane = PaneRect(table);
    const int margin = GridDelegate::TextMargin(style());
    painter.setClipRect(pane);
    for (int column = 0; column < table.Header()->count(); ++column) {
        if (table.Header()->isSectionHidden(column)) {
            continue;
        }
        const QRect cell = WholeCell(table, column);
        const auto text = cell.intersects(pane) ? model_->FooterText(column) : std::nullopt;
        if (!text) {
            continue;
        }
        const bool number = model_->Columns()[static_cast<std::size_t>(column)].kind == CellKind::Number;
        const QRect room = cell.adjusted(margin, 1, -margin, 0);
        const QString shown = fontMetrics().elidedText(ToQString(*text), Qt::ElideRight, room.width());
        const Qt::Alignment alignment = (number ? Qt::AlignRight : Qt::AlignLeft) | Qt::AlignVCenter;
        painter.drawText(room, static_cast<int>(alignment), shown);
    }
    painter.setClipping(false);
}

}  // namespace orvex
