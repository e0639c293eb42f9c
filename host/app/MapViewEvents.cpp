// What the user does on the map with mouse and keys.
#include <QContextMenuEvent>
#include <QHelpEvent>
#include <QMouseEvent>
#include <QToolTip>
#include <QWheelEvent>
#include <cmath>

#include "host/app/MapItems.h"
#include "host/app/MapView.h"

namespace orvex {

namespace {

constexpr double kZoomPerNotch = 1.25;
constexpr double kPanPerKey = 60;

}  // namespace

void MapView::wheelEvent(QWheelEvent* event) {
    const double notches = event->angleDelta().y() / 120.0;
    if (notches != 0 && !footprints_.empty()) {
        ZoomAbout(event->position(), std::pow(kZoomPerNotch, notches));
    }
    event->accept();
}

void MapView::mousePressEvent(QMouseEvent* event) {
    if (event->button() == Qt::LeftButton || event->button() == Qt::MiddleButton) {
        pressed_ = last_ = event->position();
        isDragging_ = false;
    }
}

void MapView::mouseMoveEvent(QMouseEvent* event) {
    if ((event->buttons() & (Qt::LeftButton | Qt::MiddleButton)) == 0) {
        Hover(event->position());
        return;
    }
    if ((event->position() - pressed_).manhattanLength() > 4) {
        isDragging_ = true;
        viewport()->setCursor(Qt::ClosedHandCursor);
    }
    if (isDragging_) {
        Pan(event->position() - last_);
    }
    last_ = event->position();
}

void MapView::Hover(const QPointF& pixel) {
    SetHovered(FootprintAt(pixel));
    const QPointF world = ToWorld(pixel);
    const int decimals = GridDecimals(1 / PixelsPerUnit());
    const QString position =
        QString("%1  %2").arg(world.x(), 0, 'f', decimals).arg(world.y(), 0, 'f', decimals);
    emit Hovered(hovered_ == nullptr ? position : position + "   " + Describe(*hovered_).section('\n', 0, 0));
}

void MapView::SetHovered(FootprintItem* item) {
    if (item == hovered_) {
        return;
    }
    if (hovered_ != nullptr) {
        hovered_->SetHovered(false);
    }
    hovered_ = item;
    if (hovered_ != nullptr) {
        hovered_->SetHovered(true);
    }
    photoCard_.SetPhoto(IsPhoto(hovered_) ? &FileOf(*hovered_) : nullptr);
}

void MapView::mouseReleaseEvent(QMouseEvent* event) {
    viewport()->unsetCursor();
    if (isDragging_ || event->button() != Qt::LeftButton) {
        return;
    }
    if (const FootprintItem* item = FootprintAt(event->position())) {
        emit FileClicked(item->Layer(), item->File());
    } else {
        emit GroundClicked();
    }
}

void MapView::contextMenuEvent(QContextMenuEvent* event) {
    if (const FootprintItem* item = FootprintAt(event->pos())) {
        emit MenuRequested(item->Layer(), item->File(), event->globalPos());
    }
}

void MapView::keyPressEvent(QKeyEvent* event) {
    const QPointF middle = QRectF(viewport()->rect()).center();
    switch (event->key()) {
        case Qt::Key_Plus:
            return ZoomAbout(middle, kZoomPerNotch);
        case Qt::Key_Minus:
            return ZoomAbout(middle, 1 / kZoomPerNotch);
        case Qt::Key_Left:
            return Pan({kPanPerKey, 0});
        case Qt::Key_Right:
            return Pan({-kPanPerKey, 0});
        case Qt::Key_Up:
            return Pan({0, kPanPerKey});
        case Qt::Key_Down:
            return Pan({0, -kPanPerKey});
        default:
            // Past the classes between, which would scroll.
            // NOLINTNEXTLINE(bugprone-parent-virtual-call)
            QWidget::keyPressEvent(event);
    }
}

void MapView::focusInEvent(QFocusEvent* event) {
    QGraphicsView::focusInEvent(event);
    viewport()->update();
}

void MapView::focusOutEvent(QFocusEvent* event) {
    QGraphicsView::focusOutEvent(event);
    viewport()->update();
}

bool MapView::viewportEvent(QEvent* event) {
    if (event->type() == QEvent::Leave) {
        SetHovered(nullptr);
        emit Hovered({});
    }
    if (event->type() != QEvent::ToolTip) {
        return QGraphicsView::viewportEvent(event);
    }
    const auto* help = static_cast<QHelpEvent*>(event);
    if (const FootprintItem* item = FootprintAt(help->pos()); item != nullptr && !IsPhoto(item)) {
        QToolTip::showText(help->globalPos(), Describe(*item), this);
    } else {
        QToolTip::hideText();
    }
    return true;
}

}  // namespace orvex
