#include "dialog/grid/GridTable.h"

#include <QApplication>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QScrollBar>
#include <QWheelEvent>

#include "dialog/grid/GridDelegate.h"
#include "dialog/grid/GridHeaderView.h"
#include "dialog/grid/GridModel.h"
#include "support/HandlerGuard.h"
#include "support/QtText.h"

namespace orvex {

GridTable::GridTable(Pane pane, GridDelegate& delegate, UserPrompts& prompts, QWidget* parent)
    : QTableView(parent), prompts_(prompts), pane_(pane), header_(new GridHeaderView(delegate, this)) {
    setHorizontalHeader(header_);
    header_->setSortIndicatorShown(true);  // a table hides it when it gets its header
    setItemDelegate(&delegate);
    setFrameShape(QFrame::NoFrame);
    setSelectionBehavior(SelectRows);
    setSelectionMode(ExtendedSelection);
    setEditTriggers(NoEditTriggers);
    setAlternatingRowColors(true);
    setShowGrid(false);
    setWordWrap(false);
    setTabKeyNavigation(false);
    setCornerButtonEnabled(false);
    setHorizontalScrollMode(ScrollPerPixel);
    setVerticalScrollMode(ScrollPerPixel);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setContextMenuPolicy(Qt::CustomContextMenu);
    setIconSize(QSize(16, 16));
    verticalHeader()->hide();
    verticalHeader()->setSectionResizeMode(QHeaderView::Fixed);
    if (pane == Pane::Frozen) {
        setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
        setFocusPolicy(Qt::NoFocus);
    }
}

void GridTable::SetRowHeight(int height) {
    verticalHeader()->setMinimumSectionSize(height);
    verticalHeader()->setDefaultSectionSize(height);
    verticalScrollBar()->setSingleStep(height);
}

void GridTable::UpdateRow(int row) {
    if (row >= 0) {
        viewport()->update(0, rowViewportPosition(row), viewport()->width(), rowHeight(row));
    }
}

void GridTable::keyboardSearch(const QString& typed) {
    RunGuarded(prompts_, L"OnSearch", [&] { Search(typed); });
}

void GridTable::Search(const QString& typed) {
    const auto* grid = qobject_cast<const GridModel*>(model());
    const int column = grid && searchColumn_ ? searchColumn_() : -1;
    if (column < 0 || typed.isEmpty()) {
        return;
    }
    const bool more = sinceTyped_.isValid() && sinceTyped_.elapsed() < QApplication::keyboardInputInterval();
    typed_ = more ? typed_ + typed : typed;
    sinceTyped_.start();
    // The same letter again and again walks through the rows that begin with it.
    const bool sameLetter = typed_.count(typed_.front(), Qt::CaseInsensitive) == typed_.size();
    const QString start = sameLetter ? typed_.left(1) : typed_;
    const int current = currentIndex().row();
    const int row = grid->FindRow(column, ToWide(start), current + (sameLetter ? 1 : 0));
    if (row >= 0) {
        const int shown = std::max(columnAt(0), 0);
        setCurrentIndex(grid->index(row, currentIndex().isValid() ? currentIndex().column() : shown));
    }
}

QModelIndex GridTable::moveCursor(CursorAction action, Qt::KeyboardModifiers modifiers) {
    QScrollBar* bar = horizontalScrollBar();
    const int lastRow = model() ? model()->rowCount() - 1 : -1;
    const int column = currentIndex().isValid() ? currentIndex().column() : std::max(columnAt(0), 0);
    switch (action) {
        case MoveLeft:
        case MoveRight:
            bar->setValue(bar->value() +
                          (action == MoveLeft ? -1 : 1) * fontMetrics().averageCharWidth() * 8);
            return currentIndex();
        case MoveHome:
            return lastRow >= 0 ? model()->index(0, column) : QModelIndex();
        case MoveEnd:
            return lastRow >= 0 ? model()->index(lastRow, column) : QModelIndex();
        default:
            return QTableView::moveCursor(action, modifiers);
    }
}

bool GridTable::viewportEvent(QEvent* event) {
    return (pane_ == Pane::Frozen && ForwardMouse(event)) || QTableView::viewportEvent(event);
}

bool GridTable::ForwardMouse(QEvent* event) {
    switch (event->type()) {
        case QEvent::MouseButtonPress:
        case QEvent::MouseButtonRelease:
        case QEvent::MouseButtonDblClick:
        case QEvent::MouseMove:
            break;
        default:
            return false;
    }
    if (main_ == this || main_->columnAt(0) < 0) {
        return false;
    }
    const auto* mouse = static_cast<QMouseEvent*>(event);
    const QPointF at(0, mouse->position().y());
    QMouseEvent copy(mouse->type(), at, main_->viewport()->mapToGlobal(at), mouse->button(), mouse->buttons(),
                     mouse->modifiers(), mouse->pointingDevice());
    if (event->type() == QEvent::MouseButtonPress) {
        main_->setFocus(Qt::MouseFocusReason);
    }
    QCoreApplication::sendEvent(main_->viewport(), &copy);
    event->setAccepted(copy.isAccepted());
    return true;
}

void GridTable::paintEvent(QPaintEvent* event) {
    QTableView::paintEvent(event);
    const QModelIndex current = main_->currentIndex();
    if (!main_->hasFocus() || !current.isValid()) {
        return;
    }
    // One frame around the row, open at the seam of the panes and where columns lie out of sight.
    const bool leftOpen = joinsLeft_ || header_->offset() > 0;
    const int end = header_->length() - header_->offset();
    const bool rightOpen = pane_ == Pane::Frozen || end > viewport()->width();
    constexpr int kBeyond = 3;
    const int left = leftOpen ? -kBeyond : 0;
    const int right = rightOpen ? viewport()->width() + kBeyond : end - 1;
    const QRect row(left, rowViewportPosition(current.row()), right - left, rowHeight(current.row()) - 1);
    const bool selected = selectionModel() && selectionModel()->isRowSelected(current.row());
    QPainter painter(viewport());
    QPen pen(palette().color(selected ? QPalette::HighlightedText : QPalette::Highlight));
    pen.setStyle(Qt::DotLine);
    painter.setPen(pen);
    painter.drawRect(row);
}

void GridTable::focusInEvent(QFocusEvent* event) {
    QTableView::focusInEvent(event);
    emit FocusChanged();
}

void GridTable::focusOutEvent(QFocusEvent* event) {
    QTableView::focusOutEvent(event);
    emit FocusChanged();
}

void GridTable::keyPressEvent(QKeyEvent* event) {
    const bool isReturn = event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter;
    if (isReturn && (event->modifiers() & ~Qt::KeypadModifier) == Qt::NoModifier) {
        event->accept();  // else the dialog would take it for OK
        if (currentIndex().isValid()) {
            emit Activated();
        }
    } else if (isReturn) {
        event->ignore();
    } else {
        QTableView::keyPressEvent(event);
    }
}

// With Shift the wheel scrolls sideways, in both panes.
void GridTable::wheelEvent(QWheelEvent* event) {
    if (!(event->modifiers() & Qt::ShiftModifier) || event->angleDelta().x() != 0) {
        QTableView::wheelEvent(event);
        return;
    }
    QWheelEvent sideways(event->position(), event->globalPosition(), event->pixelDelta().transposed(),
                         event->angleDelta().transposed(), event->buttons(),
                         event->modifiers() & ~Qt::ShiftModifier, event->phase(), event->inverted());
    QCoreApplication::sendEvent(main_->horizontalScrollBar(), &sideways);
    event->accept();
}

void GridTable::resizeEvent(QResizeEvent* event) {
    QTableView::resizeEvent(event);
    emit Resized();
}

}  // namespace orvex
