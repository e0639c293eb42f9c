#include "host/app/MapItems.h"

#include <QGraphicsView>
#include <QPainter>
#include <QStyleOptionGraphicsItem>
#include <algorithm>
#include <cmath>

#include "host/app/LayerTreeModel.h"
#include "host/app/PhotoCard.h"

namespace orvex {

namespace {

constexpr double kGridPixels = 110;  ///< grid lines lie at least this far apart
constexpr double kSmallest = 4;      ///< pixels; what is smaller is drawn this large
constexpr double kSmallestPhoto = 10;

bool IsPlace(const QPointF& point) {
    return std::abs(point.x()) <= kFarthest && std::abs(point.y()) <= kFarthest;  // NaN is none
}

/// True if every corner is one of the bounding rectangle's.
bool IsRectangle(const QPolygonF& corners) {
    const QRectF bounds = corners.boundingRect();
    return std::ranges::all_of(corners, [&bounds](const QPointF& corner) {
        return (corner.x() == bounds.left() || corner.x() == bounds.right()) &&
               (corner.y() == bounds.top() || corner.y() == bounds.bottom());
    });
}

/// Corners of an extent (minX, minY, maxX, maxY); empty for an inverted one.
QPolygonF Rectangle(const std::array<double, 4>& extent) {
    const auto& [minX, minY, maxX, maxY] = extent;
    return minX <= maxX && minY <= maxY ? QPolygonF({{minX, maxY}, {maxX, maxY}, {maxX, minY}, {minX, minY}})
                                        : QPolygonF();
}

QPolygonF CornersOf(const RasterInfo& raster) {
    const auto transform = raster.PixelToWorld();
    if (!transform) {
        return {};
    }
    const auto& t = *transform;
    const QTransform toWorld(t[1], t[4], t[2], t[5], t[0], t[3]);
    const double width = raster.width;
    const double height = raster.height;
    return toWorld.map(QPolygonF({{0, 0}, {width, 0}, {width, height}, {0, height}}));
}

/// Grid lines of what a view shows.
struct Grid {
    std::vector<double> x;
    std::vector<double> y;
    int decimals = 0;
};

Grid GridOf(const QTransform& toPixel, const QWidget& view) {
    const double step = GridStep(toPixel.m11(), kGridPixels);
    const QRectF world = toPixel.inverted().mapRect(QRectF(view.rect()));
    return {GridLines(world.left(), world.right(), step), GridLines(world.top(), world.bottom(), step),
            GridDecimals(step)};
}

/// A shade between the ground and the text of a view.
QColor Tone(const QWidget& view, double share) {
    return Mixed(view.palette().color(QPalette::Base), view.palette().color(QPalette::Text), share);
}

}  // namespace

QPolygonF FootprintOf(LayerKind kind, const LayerFile& file) {
    QPolygonF corners;
    if (kind == LayerKind::Las) {
        corners = Rectangle({file.min[0], file.min[1], file.max[0], file.max[1]});
    } else if (kind == LayerKind::Raster) {
        corners = CornersOf(file.raster);
    } else if (file.photo.position) {
        corners = {QPointF((*file.photo.position)[0], (*file.photo.position)[1])};
    } else if (file.feature.extent) {
        corners = Rectangle(*file.feature.extent);
    }
    return std::ranges::all_of(corners, IsPlace) ? corners : QPolygonF();
}

double GridStep(double pixelsPerUnit, double minPixels) {
    const double least = minPixels / pixelsPerUnit;
    const double power = std::pow(10.0, std::floor(std::log10(least)));
    for (const double factor : {1.0, 2.0, 5.0}) {
        if (factor * power >= least) {
            return factor * power;
        }
    }
    return 10 * power;
}

int GridDecimals(double step) {
    return std::clamp(static_cast<int>(std::ceil(-std::log10(step) - 1e-9)), 0, 12);
}

std::vector<double> GridLines(double from, double to, double step) {
    constexpr double kMaxLines = 1000;
    const double first = std::ceil(from / step);
    const double last = std::floor(to / step);
    std::vector<double> lines;
    // Far from the origin the next line can be the same number.
    if (last - first < kMaxLines && first + 1 > first && last + 1 > last) {
        for (int i = 0; first + i <= last; ++i) {
            lines.push_back((first + i) * step);
        }
    }
    return lines;
}

QColor Mixed(const QColor& a, const QColor& b, double share) {
    return QColor::fromRgbF(static_cast<float>(a.redF() * (1 - share) + b.redF() * share),
                            static_cast<float>(a.greenF() * (1 - share) + b.greenF() * share),
                            static_cast<float>(a.blueF() * (1 - share) + b.blueF() * share));
}

void DrawLabel(QPainter& painter, const QWidget& view, const QRectF& place, const QColor& colour,
               const QString& text) {
    QColor ground = view.palette().color(QPalette::Base);
    ground.setAlpha(165);
    painter.fillRect(place.adjusted(-3, 0, 3, 0), ground);
    painter.setPen(colour);
    painter.drawText(place, Qt::AlignCenter, text);
}

ThumbnailItem::ThumbnailItem(QImage image, const RasterInfo& raster) : image_(std::move(image)) {
    const auto t = raster.PixelToWorld().value_or(std::array<double, 6>{});
    const double across = static_cast<double>(raster.width) / image_.width();
    const double down = static_cast<double>(raster.height) / image_.height();
    setTransform(QTransform(t[1] * across, t[4] * across, t[2] * down, t[5] * down, t[0], t[3]));
    setZValue(kThumbnailOrder);
    setFlag(ItemUsesExtendedStyleOption);  // for the exposed part
}

void ThumbnailItem::paint(QPainter* painter, const QStyleOptionGraphicsItem* option, QWidget*) {
    // Only what is seen: deep inside, the whole would go beyond the coordinates that a painter takes. Some
    // pixels more, so that smoothing has no seam where only a part of the view is drawn anew.
    const double scale = QStyleOptionGraphicsItem::levelOfDetailFromTransform(painter->worldTransform());
    const double margin = std::min(2.0, 1000 / scale);
    const QRectF seen = option->exposedRect.adjusted(-margin, -margin, margin, margin) & boundingRect();
    painter->setRenderHint(QPainter::SmoothPixmapTransform);
    painter->drawImage(seen, image_, seen);
    painter->setRenderHint(QPainter::SmoothPixmapTransform, false);
}

GridItem::GridItem() {
    setZValue(kGridOrder);
}

QRectF GridItem::boundingRect() const {
    return {-2 * kFarthest, -2 * kFarthest, 4 * kFarthest, 4 * kFarthest};
}

void GridItem::paint(QPainter* painter, const QStyleOptionGraphicsItem*, QWidget* view) {
    const QTransform toPixel = painter->worldTransform();
    const Grid grid = GridOf(toPixel, *view);
    painter->resetTransform();
    painter->setPen(Tone(*view, 0.12));
    for (const double place : grid.x) {
        const double x = toPixel.map(QPointF(place, 0)).x();
        painter->drawLine(QPointF(x, 0), QPointF(x, view->height()));
    }
    for (const double place : grid.y) {
        const double y = toPixel.map(QPointF(0, place)).y();
        painter->drawLine(QPointF(0, y), QPointF(view->width(), y));
    }
    painter->setWorldTransform(toPixel);
}

void GridItem::DrawLabels(QPainter& painter, const QGraphicsView& view) {
    const QWidget& viewport = *view.viewport();
    const QTransform toPixel = view.viewportTransform();
    const Grid grid = GridOf(toPixel, viewport);
    const QFontMetrics metrics(viewport.font());
    const auto draw = [&](const QPointF& lowerLeft, double place) {
        const QString text = QString::number(place, 'f', grid.decimals);
        const QRectF box(lowerLeft.x(), lowerLeft.y() - metrics.height(), metrics.horizontalAdvance(text),
                         metrics.height());
        DrawLabel(painter, viewport, box, Tone(viewport, 0.6), text);
    };
    for (const double place : grid.x) {
        draw(QPointF(toPixel.map(QPointF(place, 0)).x() + 4, viewport.height() - 3), place);
    }
    for (const double place : grid.y) {
        draw(QPointF(4, toPixel.map(QPointF(0, place)).y() - 2), place);
    }
}

FootprintItem::FootprintItem(const QGraphicsView& view, std::size_t layer, std::size_t file, LayerKind kind,
                             QPolygonF corners)
    : view_(view),
      layer_(layer),
      file_(file),
      kind_(kind),
      corners_(std::move(corners)),
      isRectangle_(IsRectangle(corners_)) {
    setFlag(ItemIsSelectable);
    setZValue(kFootprintOrder);
}

QRectF FootprintItem::Pixels() const {
    QRectF pixels = view_.viewportTransform().mapRect(Extent());
    const double smallest = kind_ == LayerKind::Photo ? kSmallestPhoto : kSmallest;
    const double widthMissing = std::max(0.0, smallest - pixels.width()) / 2;
    const double heightMissing = std::max(0.0, smallest - pixels.height()) / 2;
    return pixels.adjusted(-widthMissing, -heightMissing, widthMissing, heightMissing);
}

bool FootprintItem::Contains(const QPointF& world, double slack) const {
    const QRectF extent = Extent();
    return world.x() >= extent.left() - slack && world.x() <= extent.right() + slack &&
           world.y() >= extent.top() - slack && world.y() <= extent.bottom() + slack &&
           (isRectangle_ || corners_.containsPoint(world, Qt::OddEvenFill) ||
            std::max(extent.width(), extent.height()) <= slack);
}

void FootprintItem::SetHasThumbnail(bool hasThumbnail) {
    hasThumbnail_ = hasThumbnail;
    update();
}

void FootprintItem::SetLight(bool isLight) {
    isLight_ = isLight;
    update();
}

void FootprintItem::SetHeading(const std::optional<double>& heading) {
    heading_ = heading;
    update();
}

void FootprintItem::SetHovered(bool isHovered) {
    isHovered_ = isHovered;
    setZValue(isHovered ? kHoveredOrder : kFootprintOrder);
    update();
}

QRectF FootprintItem::boundingRect() const {
    // With a pixel for the pen.
    const double pixels = kind_ == LayerKind::Photo ? kPhotoMarkRadius + 1 : kSmallest;
    const double slack = pixels / view_.transform().m11();
    return Extent().adjusted(-slack, -slack, slack, slack);
}

/// LAS files are filled; rasters are their thumbnails, shapefiles their shapes.
void FootprintItem::paint(QPainter* painter, const QStyleOptionGraphicsItem* option, QWidget* view) {
    const QTransform toPixel = painter->worldTransform();
    painter->resetTransform();
    const QColor colour = LayerTreeModel::ColourOf(layer_);
    QColor fill = colour;
    const bool isFeature = kind_ == LayerKind::Feature;
    const bool isOutline = isFeature || kind_ == LayerKind::Raster;
    fill.setAlpha(isLight_ ? 25 : 60);
    if (!isFeature || !hasThumbnail_) {
        painter->setPen(QPen(colour, 1, isOutline && !hasThumbnail_ ? Qt::DashLine : Qt::SolidLine));
        painter->setBrush(isOutline || hasThumbnail_ ? QBrush(Qt::NoBrush) : QBrush(fill));
        DrawOutline(*painter, *view);
    }
    fill.setAlpha(hasThumbnail_ ? 50 : 120);
    painter->setBrush(isFeature ? QBrush(Qt::NoBrush) : QBrush(fill));
    const QColor strong = Mixed(colour, view->palette().color(QPalette::Text), 0.4);
    if ((option->state & QStyle::State_Selected) != 0) {
        painter->setPen(QPen(strong, isFeature ? 1 : 2));
        DrawOutline(*painter, *view);
    }
    if (isHovered_) {
        painter->setPen(QPen(strong, 1));
        DrawOutline(*painter, *view);
    }
    painter->setWorldTransform(toPixel);
}

void FootprintItem::DrawOutline(QPainter& painter, const QWidget& view) const {
    if (kind_ == LayerKind::Photo) {
        DrawPhotoMark(painter, Pixels().center(), heading_);
        return;
    }
    // Far outside the view nothing is seen, and coordinates beyond what a painter takes would go wrong.
    const QRectF near = QRectF(view.rect()).adjusted(-10, -10, 10, 10);
    const QRectF pixels = Pixels();
    if (isRectangle_ || std::max(pixels.width(), pixels.height()) <= kSmallest) {
        painter.drawRect(pixels.intersected(near));
    } else {
        painter.drawPolygon(view_.viewportTransform().map(corners_).intersected(near));
    }
}

}  // namespace orvex
