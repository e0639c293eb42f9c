#pragma once
#include <QColor>
#include <QRectF>

class QPainter;
class QWidget;

namespace orvex {

class ViewTransform;

/// Lines of equal coordinates over the whole of a view, in its colours.
void DrawGridLines(QPainter& painter, const QWidget& view, const ViewTransform& transform);
/// The coordinates of the lines along the lower and the left edge, readable on whatever lies below.
void DrawGridLabels(QPainter& painter, const QWidget& view, const ViewTransform& transform);

/// Part `share` of `b`, the rest of `a`.
QColor Mixed(const QColor& a, const QColor& b, double share);
/// Fills a ground for text on top of pictures.
void FillTextGround(QPainter& painter, const QWidget& view, const QRectF& place);

}  // namespace orvex
