#include "host/app/RasterPainter.h"

#include <QPainter>

namespace orvex {

std::optional<std::array<double, 6>> TransformOf(const RasterFacts& raster) {
    if (raster.transform || !raster.extent || raster.width < 1 || raster.height < 1) {
        return raster.transform;
    }
    const auto& [minX, minY, maxX, maxY] = *raster.extent;
    return std::array<double, 6>{minX, (maxX - minX) / raster.width, 0, maxY,
                                 0,    (minY - maxY) / raster.height};
}

QPolygonF CornersOf(const RasterFacts& raster) {
    const auto transform = TransformOf(raster);
    if (!transform) {
        return {};
    }
    const auto& t = *transform;
    const auto at = [&t](double column, double row) {
        return QPointF(t[0] + column * t[1] + row * t[2], t[3] + column * t[4] + row * t[5]);
    };
    return QPolygonF({at(0, 0), at(raster.width, 0), at(raster.width, raster.height), at(0, raster.height)});
}

void DrawRaster(QPainter& painter, const QImage& picture, const RasterFacts& raster,
                const ViewTransform& view, const QRectF& visible) {
    const QPolygonF corners = view.ToPixel(CornersOf(raster));
    if (corners.isEmpty()) {
        return;
    }
    const QPointF alongRow = (corners[1] - corners[0]) / picture.width();
    const QPointF alongColumn = (corners[3] - corners[0]) / picture.height();
    const QTransform toView(alongRow.x(), alongRow.y(), alongColumn.x(), alongColumn.y(), corners[0].x(),
                            corners[0].y());
    bool canInvert = false;
    const QTransform toPicture = toView.inverted(&canInvert);
    // Far outside the view coordinates would go beyond what a painter takes.
    const QRectF seen = canInvert ? toPicture.mapRect(visible).intersected(QRectF(picture.rect())) : QRectF();
    if (seen.isEmpty()) {
        return;
    }
    painter.save();
    painter.setRenderHint(QPainter::SmoothPixmapTransform);
    painter.setTransform(toView, true);
    painter.drawImage(seen, picture, seen);
    painter.restore();
}

}  // namespace orvex
