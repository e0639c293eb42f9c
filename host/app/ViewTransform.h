#pragma once
#include <QPointF>
#include <QPolygonF>
#include <QRectF>
#include <QSizeF>
#include <cstddef>
#include <optional>
#include <vector>

namespace orvex {

/// From world coordinates (x to the right, y up) to the pixels of a view (y down), the same scale both ways.
class ViewTransform {
  public:
    /// Shows all of `world` in a view of this size with a margin on every side. A world without extent is
    /// shown a hundred units wide.
    void Fit(const QRectF& world, const QSizeF& view, double marginPixels);
    /// Scales by `factor` and keeps the world point under `pixel` where it is. The scale stays within what
    /// coordinates can tell apart.
    void ZoomAbout(const QPointF& pixel, double factor);
    void Pan(const QPointF& pixels);
    /// The view got another size: its middle stays its middle.
    void Resize(const QSizeF& from, const QSizeF& to);

    QPointF ToPixel(const QPointF& world) const;
    QPointF ToWorld(const QPointF& pixel) const;
    QRectF ToPixel(const QRectF& world) const;
    QPolygonF ToPixel(const QPolygonF& world) const;
    double PixelsPerUnit() const { return scale_; }

  private:
    double scale_ = 1;  ///< pixels per unit
    QPointF origin_;    ///< world point at pixel 0, 0
};

/// Step of grid lines at least `leastPixels` apart: 1, 2 or 5 times a power of ten.
double GridStep(double pixelsPerUnit, double leastPixels);
/// Decimals that tell the lines of a step apart.
int GridDecimals(double step);

/// The multiples of `step` from `from` to `to`; none where numbers are too coarse for it or there would be
/// thousands.
std::vector<double> GridLines(double from, double to, double step);

/// Extents to be drawn and hit. Extents that are not finite or are inverted are none.
class FootprintSet {
  public:
    struct Footprint {
        std::size_t layer = 0;
        std::size_t file = 0;
        QRectF world;  ///< top is the smaller y
        /// Its corners, in order around it, where its sides do not run along the axes; else empty.
        QPolygonF corners;
    };

    /// False when the extent is none.
    bool Add(std::size_t layer, std::size_t file, double minX, double minY, double maxX, double maxY);
    /// A footprint of four corners, which may be rotated or mirrored. False when it is none.
    bool Add(std::size_t layer, std::size_t file, const QPolygonF& corners);
    void Clear();
    const std::vector<Footprint>& All() const { return footprints_; }
    /// The extent of all; an empty rectangle when there are none.
    QRectF Bounds() const;
    /// The smallest footprint that holds a world point, widened by `slack` on every side; of equals the one
    /// drawn last.
    std::optional<std::size_t> At(const QPointF& world, double slack) const;
    /// The index of a file's footprint.
    std::optional<std::size_t> Find(std::size_t layer, std::size_t file) const;

  private:
    std::vector<Footprint> footprints_;
};

}  // namespace orvex
