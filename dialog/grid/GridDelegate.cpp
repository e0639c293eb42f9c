#include "dialog/grid/GridDelegate.h"

#include <QAbstractItemView>
#include <QApplication>
#include <QHelpEvent>
#include <QPainter>
#include <QToolTip>

#include "dialog/grid/GridColours.h"
#include "dialog/grid/GridModel.h"
#include "dialog/grid/GridText.h"
#include "support/QtText.h"

namespace orvex {
namespace {

constexpr int kPadding = 2;  // beside the margin that a style leaves anyway

}  // namespace

int GridDelegate::TextMargin(const QStyle* style) {
    return kPadding + style->pixelMetric(QStyle::PM_FocusFrameHMargin) + 1;
}

QIcon GridDelegate::IconAt(int image) const {
    return image >= 0 && static_cast<std::size_t>(image) < icons_.size()
               ? icons_[static_cast<std::size_t>(image)]
               : QIcon();
}

QString GridDelegate::displayText(const QVariant& value, const QLocale&) const {
    return ToQString(OnOneLine(ToWide(value.toString())));
}

void GridDelegate::SetIcons(std::vector<QIcon> icons) {
    icons_ = std::move(icons);
    // A style tints icons on selected rows unless they bring an image for that; a state's colour must stay.
    for (QIcon& icon : icons_) {
        for (const QSize& size : icon.availableSizes()) {
            icon.addPixmap(icon.pixmap(size, 1.0), QIcon::Selected);
        }
    }
}

void GridDelegate::paint(QPainter* painter, const QStyleOptionViewItem& option,
                         const QModelIndex& index) const {
    ++painted_;
    QStyleOptionViewItem cell = option;
    initStyleOption(&cell, index);
    const QStyle* style = cell.widget ? cell.widget->style() : QApplication::style();
    style->drawPrimitive(QStyle::PE_PanelItemViewItem, &cell, painter, cell.widget);
    if (!(cell.state & QStyle::State_Selected)) {
        painter->setPen(Mixed(cell.palette.color(QPalette::Base), cell.palette.color(QPalette::Text), 0.09));
        painter->drawLine(cell.rect.topRight(), cell.rect.bottomRight());
    }
    if (!cell.text.isEmpty()) {
        cell.rect.adjust(kPadding, 0, -kPadding, 0);
    }
    style->drawControl(QStyle::CE_ItemViewItem, &cell, painter, cell.widget);
}

void GridDelegate::initStyleOption(QStyleOptionViewItem* option, const QModelIndex& index) const {
    QStyledItemDelegate::initStyleOption(option, index);
    option->state &= ~QStyle::State_HasFocus;
    // A cell's own colour is meant for a white background.
    const QVariant colour = index.data(Qt::ForegroundRole);
    if (colour.isValid()) {
        option->palette.setColor(QPalette::Text, ReadableOn(option->palette, colour.value<QColor>()));
    }
    const QIcon icon = IconAt(index.data(GridModel::kIconRole).toInt());
    if (icon.isNull()) {
        return;
    }
    option->features |= QStyleOptionViewItem::HasDecoration;
    option->icon = icon;
    option->decorationSize = icon.actualSize(option->decorationSize);
    if (option->text.isEmpty()) {
        option->decorationAlignment = Qt::AlignCenter;
    }
}

bool GridDelegate::helpEvent(QHelpEvent* event, QAbstractItemView* view, const QStyleOptionViewItem& option,
                             const QModelIndex& index) {
    if (!event || event->type() != QEvent::ToolTip || !index.isValid() ||
        !index.data(Qt::ToolTipRole).toString().isEmpty()) {
        return QStyledItemDelegate::helpEvent(event, view, option, index);
    }
    QStyleOptionViewItem cell = option;
    initStyleOption(&cell, index);
    const QRect room = view->style()->subElementRect(QStyle::SE_ItemViewItemText, &cell, view);
    const bool cut =
        cell.fontMetrics.horizontalAdvance(cell.text) > room.width() - 2 * TextMargin(view->style());
    const QString whole = index.data(Qt::AccessibleTextRole).toString();
    const bool isFlag = cell.text.isEmpty() && !whole.isEmpty();
    QToolTip::showText(event->globalPos(), cut || isFlag ? TooltipText(whole) : QString(), view);
    return true;
}

}  // namespace orvex
