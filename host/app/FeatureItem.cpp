#include "host/app/FeatureItem.h"

#include <QPainter>
#include <QPainterPath>
#include <QWidget>
#include <array>
#include <functional>
#include <utility>

#include "host/app/MapItems.h"

namespace orvex {

namespace {

constexpr double kPointPixels = 5;
constexpr double kSmallest = 1.5;  ///< pixels; of smaller shapes only a dot is drawn
/// Beyond that many pixels beside the view, a painter's coordinates would go wrong.
constexpr double kFarOutside = 20000;
constexpr std::size_t kMostSmoothed = 20000;  ///< vertices

using Shape = FeatureShapes::Shape;

/// Draws shapes in pixels of a view.
class ShapePainter {
  public:
    ShapePainter(QPainter& painter, const QTransform& toPixel, const QRectF& view)
        : painter_(painter),
          toPixel_(toPixel),
          near_(view.adjusted(-10, -10, 10, 10)),
          drawable_(view.adjusted(-kFarOutside, -kFarOutside, kFarOutside, kFarOutside)) {}

    void DrawPoints(const QPolygonF& points) {
        QPolygonF seen;
        for (const QPointF& point : points) {
            const QPointF pixel = toPixel_.map(point);
            if (near_.contains(pixel)) {
                seen.append(pixel);
            }
        }
        painter_.drawPoints(seen);
    }

    void DrawLines(const Shape& shape) {
        if (IsDrawnAsDot(shape)) {
            return;
        }
        for (const QPolygonF& part : shape.parts) {
            DrawLine(toPixel_.map(part), drawable_.contains(toPixel_.mapRect(shape.bounds)));
        }
    }

    void DrawPolygon(const Shape& shape) {
        if (IsDrawnAsDot(shape)) {
            return;
        }
        const bool isNear = drawable_.contains(toPixel_.mapRect(shape.bounds));
        QPainterPath area;
        for (const QPolygonF& part : shape.parts) {
            const QPolygonF ring = toPixel_.map(part);
            area.addPolygon(isNear ? ring : ClippedRing(ring, drawable_));
            area.closeSubpath();
        }
        painter_.drawPath(area);
    }

  private:
    /// True if nothing more is to be drawn of a shape.
    bool IsDrawnAsDot(const Shape& shape) {
        const QRectF pixels = toPixel_.mapRect(shape.bounds);
        if (!pixels.adjusted(-1, -1, 1, 1).intersects(near_)) {
            return true;
        }
        if (std::max(pixels.width(), pixels.height()) > kSmallest) {
            return false;
        }
        painter_.drawPoint(pixels.center());
        return true;
    }

    void DrawLine(const QPolygonF& line, bool isNear) {
        if (isNear) {
            painter_.drawPolyline(line);
            return;
        }
        for (qsizetype i = 1; i < line.size(); ++i) {
            if (const auto seen = ClippedLine({line[i - 1], line[i]}, drawable_)) {
                painter_.drawLine(*seen);
            }
        }
    }

    QPainter& painter_;
    const QTransform toPixel_;
    const QRectF near_;
    const QRectF drawable_;
};

/// Cuts a ring off at one edge. `inside` is positive on the side to keep, by the distance from the edge.
QPolygonF CutAt(const QPolygonF& ring, const std::function<double(const QPointF&)>& inside) {
    QPolygonF kept;
    for (qsizetype i = 0; i < ring.size(); ++i) {
        const QPointF& from = ring[i == 0 ? ring.size() - 1 : i - 1];
        const QPointF& to = ring[i];
        const double before = inside(from);
        const double after = inside(to);
        if ((before < 0) != (after < 0)) {
            kept.append(from + (to - from) * (before / (before - after)));
        }
        if (after >= 0) {
            kept.append(to);
        }
    }
    return kept;
}

}  // namespace

std::optional<QLineF> ClippedLine(const QLineF& line, const QRectF& limits) {
    double from = 0;
    double to = 1;
    // For each edge: how fast the line leaves, and how far it may go.
    const std::array<std::pair<double, double>, 4> edges = {{{-line.dx(), line.x1() - limits.left()},
                                                             {line.dx(), limits.right() - line.x1()},
                                                             {-line.dy(), line.y1() - limits.top()},
                                                             {line.dy(), limits.bottom() - line.y1()}}};
    for (const auto& [speed, room] : edges) {
        if (speed == 0 && room < 0) {
            return std::nullopt;
        }
        if (speed < 0) {
            from = std::max(from, room / speed);
        } else if (speed > 0) {
            to = std::min(to, room / speed);
        }
    }
    if (from > to) {
        return std::nullopt;
    }
    return QLineF(line.pointAt(from), line.pointAt(to));
}

QPolygonF ClippedRing(const QPolygonF& ring, const QRectF& limits) {
    QPolygonF kept = CutAt(ring, [&](const QPointF& p) { return p.x() - limits.left(); });
    kept = CutAt(kept, [&](const QPointF& p) { return limits.right() - p.x(); });
    kept = CutAt(kept, [&](const QPointF& p) { return p.y() - limits.top(); });
    return CutAt(kept, [&](const QPointF& p) { return limits.bottom() - p.y(); });
}

FeatureItem::FeatureItem(std::shared_ptr<const FeatureShapes> shapes, const QColor& colour)
    : shapes_(std::move(shapes)), colour_(colour) {
    setZValue(kFeatureOrder);
}

QRectF FeatureItem::boundingRect() const {
    // Points have a size in pixels, which can be any in the scene; what lies outside the view costs little.
    return {-2 * kFarthest, -2 * kFarthest, 4 * kFarthest, 4 * kFarthest};
}

void FeatureItem::paint(QPainter* painter, const QStyleOptionGraphicsItem*, QWidget* view) {
    const QTransform toPixel = painter->worldTransform();
    painter->resetTransform();
    painter->setRenderHint(QPainter::Antialiasing, shapes_->vertices <= kMostSmoothed);
    ShapePainter shapes(*painter, toPixel, QRectF(view->rect()));
    QColor fill = colour_;
    fill.setAlpha(60);
    painter->setPen(QPen(colour_, 1));
    painter->setBrush(fill);
    for (const Shape& polygon : shapes_->polygons) {
        shapes.DrawPolygon(polygon);
    }
    painter->setBrush(Qt::NoBrush);
    painter->setPen(QPen(colour_, 1.5));
    for (const Shape& line : shapes_->lines) {
        shapes.DrawLines(line);
    }
    painter->setPen(QPen(colour_, kPointPixels, Qt::SolidLine, Qt::RoundCap));
    shapes.DrawPoints(shapes_->points);
    painter->setRenderHint(QPainter::Antialiasing, false);
    painter->setWorldTransform(toPixel);
}

}  // namespace orvex
