#include "host/app/GridPainter.h"

#include <QFontMetrics>
#include <QPainter>
#include <QWidget>
#include <vector>

#include "host/app/ViewTransform.h"

namespace orvex {

namespace {

constexpr double kGridPixels = 110;  ///< grid lines lie at least this far apart

struct Grid {
    std::vector<double> x;
    std::vector<double> y;
    int decimals = 0;
};

Grid GridOf(const QWidget& view, const ViewTransform& transform) {
    const double step = GridStep(transform.PixelsPerUnit(), kGridPixels);
    const QPointF topLeft = transform.ToWorld({0, 0});
    const QPointF bottomRight = transform.ToWorld(QPointF(view.width(), view.height()));
    return {GridLines(topLeft.x(), bottomRight.x(), step), GridLines(bottomRight.y(), topLeft.y(), step),
            GridDecimals(step)};
}

QColor Tone(const QWidget& view, double share) {
    return Mixed(view.palette().color(QPalette::Base), view.palette().color(QPalette::Text), share);
}

void DrawLabel(QPainter& painter, const QWidget& view, const QPointF& lowerLeft, const QString& text) {
    const QFontMetrics metrics(view.font());
    const QRectF place(lowerLeft.x(), lowerLeft.y() - metrics.height(), metrics.horizontalAdvance(text),
                       metrics.height());
    FillTextGround(painter, view, place);
    painter.drawText(place, Qt::AlignCenter, text);
}

}  // namespace

QColor Mixed(const QColor& a, const QColor& b, double share) {
    return QColor::fromRgbF(static_cast<float>(a.redF() * (1 - share) + b.redF() * share),
                            static_cast<float>(a.greenF() * (1 - share) + b.greenF() * share),
                            static_cast<float>(a.blueF() * (1 - share) + b.blueF() * share));
}

void FillTextGround(QPainter& painter, const QWidget& view, const QRectF& place) {
    QColor ground = view.palette().color(QPalette::Base);
    ground.setAlpha(165);
    painter.fillRect(place.adjusted(-3, 0, 3, 0), ground);
}

void DrawGridLines(QPainter& painter, const QWidget& view, const ViewTransform& transform) {
    const Grid grid = GridOf(view, transform);
    painter.setPen(Tone(view, 0.12));
    for (const double place : grid.x) {
        const double x = transform.ToPixel(QPointF(place, 0)).x();
        painter.drawLine(QPointF(x, 0), QPointF(x, view.height()));
    }
    for (const double place : grid.y) {
        const double y = transform.ToPixel(QPointF(0, place)).y();
        painter.drawLine(QPointF(0, y), QPointF(view.width(), y));
    }
}

void DrawGridLabels(QPainter& painter, const QWidget& view, const ViewTransform& transform) {
    const Grid grid = GridOf(view, transform);
    painter.setPen(Tone(view, 0.6));
    for (const double place : grid.x) {
        const double x = transform.ToPixel(QPointF(place, 0)).x();
        DrawLabel(painter, view, QPointF(x + 4, view.height() - 3),
                  QString::number(place, 'f', grid.decimals));
    }
    for (const double place : grid.y) {
        const double y = transform.ToPixel(QPointF(0, place)).y();
        DrawLabel(painter, view, QPointF(4, y - 2), QString::number(place, 'f', grid.decimals));
    }
}

}  // namespace orvex
