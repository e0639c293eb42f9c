#include "dialog/grid/GridDelegate.h"

#include <QAbstractItemView>
#include <QApplication>
#include <QHelpEvent>
#include <QToolTip>

#include "dialog/grid/GridModel.h"
#include "dialog/grid/GridText.h"

namespace orvex {

QIcon GridDelegate::IconAt(int image) const {
    return image >= 0 && static_cast<std::size_t>(image) < icons_.size()
               ? icons_[static_cast<std::size_t>(image)]
               : QIcon();
}

QString GridDelegate::displayText(const QVariant& value, const QLocale&) const {
    return QString::fromStdWString(OnOneLine(value.toString().toStdWString()));
}

void GridDelegate::paint(QPainter* painter, const QStyleOptionViewItem& option,
                         const QModelIndex& index) const {
    ++painted_;
    QStyledItemDelegate::paint(painter, option, index);
}

void GridDelegate::initStyleOption(QStyleOptionViewItem* option, const QModelIndex& index) const {
    QStyledItemDelegate::initStyleOption(option, index);
    option->state &= ~QStyle::State_HasFocus;
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
    const bool cut = cell.fontMetrics.horizontalAdvance(cell.text) >
                     room.width() - 2 * (view->style()->pixelMetric(QStyle::PM_FocusFrameHMargin) + 1);
    const QString whole = index.data(Qt::AccessibleTextRole).toString();
    const bool isFlag = cell.text.isEmpty() && !whole.isEmpty();
    QToolTip::showText(event->globalPos(), cut || isFlag ? whole : QString(), view);
    return true;
}

}  // namespace orvex
