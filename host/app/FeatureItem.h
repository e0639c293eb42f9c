#pragma once
#include <QColor>
#include <QGraphicsItem>
#include <QLineF>
#include <QPolygonF>
#include <memory>
#include <optional>

#include "host/app/FeatureShapes.h"

namespace orvex {

/// The part of a segment inside a rectangle; nullopt if there is none. `limits` is not empty.
std::optional<QLineF> ClippedLine(const QLineF& line, const QRectF& limits);
/// The part of a ring inside a rectangle, as a ring along its edges; empty if there is none.
QPolygonF ClippedRing(const QPolygonF& ring, const QRectF& limits);

/// The shapes of a shapefile where they lie.
class FeatureItem final : public QGraphicsItem {
  public:
    FeatureItem(std::shared_ptr<const FeatureShapes> shapes, const QColor& colour);

    QRectF boundingRect() const override;
    void paint(QPainter* painter, const QStyleOptionGraphicsItem* option, QWidget* view) override;

  private:
    std::shared_ptr<const FeatureShapes> shapes_;
    QColor colour_;
};

}  // namespace orvex
