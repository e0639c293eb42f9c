#pragma once
// What the map shows, from below: thumbnails, the coordinate grid, points of LAS files, footprints, shapes of
// features (see FeatureItem). Scene coordinates are those of the coordinate system; the view turns y up.
#include <QGraphicsItem>
#include <QImage>
#include <QPolygonF>
#include <array>
#include <optional>
#include <vector>

#include "host/app/Project.h"

class QGraphicsView;

namespace orvex {

/// Beyond any coordinate system; a damaged header that says so must not shrink all others to a dot.
inline constexpr double kFarthest = 1e12;

/// What lies over what, from below.
enum MapOrder { kThumbnailOrder, kGridOrder, kPointOrder, kFootprintOrder, kHoveredOrder, kFeatureOrder };

/// Corners of a file on the ground, in order around it; a raster's from its first pixel on; the place of a
/// photo. Empty when the file states no extent, an inverted one, or one that is not finite or beyond any
/// coordinate system.
QPolygonF FootprintOf(LayerKind kind, const LayerFile& file);

/// Step of grid lines at least `minPixels` apart: 1, 2 or 5 times a power of ten.
double GridStep(double pixelsPerUnit, double minPixels);
/// Decimals that tell the lines of a step apart.
int GridDecimals(double step);
/// The multiples of `step` from `from` to `to`; none where double precision is too coarse for the step or
/// there would be thousands.
std::vector<double> GridLines(double from, double to, double step);

/// `share` of `b`, the rest of `a`.
QColor Mixed(const QColor& a, const QColor& b, double share);
/// Draws text on a ground that keeps it readable on thumbnails. Painter in pixels of the view.
void DrawLabel(QPainter& painter, const QWidget& view, const QRectF& place, const QColor& colour,
               const QString& text);

/// A raster's thumbnail where the raster lies.
class ThumbnailItem final : public QGraphicsItem {
  public:
    ThumbnailItem(QImage image, const RasterInfo& raster);

    QRectF boundingRect() const override { return image_.rect(); }
    void paint(QPainter* painter, const QStyleOptionGraphicsItem* option, QWidget* view) override;

  private:
    QImage image_;
};

/// Lines of equal coordinates over the whole view.
class GridItem final : public QGraphicsItem {
  public:
    GridItem();

    QRectF boundingRect() const override;
    void paint(QPainter* painter, const QStyleOptionGraphicsItem* option, QWidget* view) override;
    /// Draws the coordinates of the lines along the lower and the left edge. Painter in pixels of the view.
    static void DrawLabels(QPainter& painter, const QGraphicsView& view);
};

/// The outline of a file. Selected, it is highlighted.
class FootprintItem final : public QGraphicsItem {
  public:
    /// `layer` and `file` are places in the project. `view` must outlive the item.
    FootprintItem(const QGraphicsView& view, std::size_t layer, std::size_t file, LayerKind kind,
                  QPolygonF corners);

    std::size_t Layer() const { return layer_; }
    std::size_t File() const { return file_; }
    const QPolygonF& Corners() const { return corners_; }
    /// Extent in scene coordinates.
    QRectF Extent() const { return corners_.boundingRect(); }
    /// In pixels of the view, never too small to be seen.
    QRectF Pixels() const;
    /// True if the footprint, widened by `slack` on every side, contains a place.
    bool Contains(const QPointF& world, double slack) const;
    /// A raster without a thumbnail has a dashed outline, and so has a shapefile of which not all is drawn. A
    /// LAS file whose points are drawn is not filled.
    void SetHasThumbnail(bool hasThumbnail);
    /// On a map with rasters fills are lighter, so that thumbnails shine through.
    void SetLight(bool isLight);
    /// Where a photo was taken to, in degrees clockwise from north.
    void SetHeading(const std::optional<double>& heading);
    void SetHovered(bool isHovered);

    QRectF boundingRect() const override;
    void paint(QPainter* painter, const QStyleOptionGraphicsItem* option, QWidget* view) override;

  private:
    void DrawOutline(QPainter& painter, const QWidget& view) const;

    const QGraphicsView& view_;
    std::size_t layer_;
    std::size_t file_;
    LayerKind kind_;
    QPolygonF corners_;
    bool isRectangle_;  ///< its sides run along the axes
    bool hasThumbnail_ = false;
    bool isLight_ = false;
    bool isHovered_ = false;
    std::optional<double> heading_;
};

}  // namespace orvex
