#pragma once
#include <QImage>
#include <QRectF>
#include <array>
#include <span>
#include <vector>

#include "orvexcommon/LasCompanion.h"

namespace orvex {

/// Draws points of one extent seen from above: of several in a pixel the highest is seen. Classified points
/// have the colour of their class, the lower the darker; others a colour by height.
class PointCanvas {
  public:
    /// `world`: what the image covers; y grows upwards. Colours by height run from `low` to `high`.
    PointCanvas(const QRectF& world, const QSize& pixels, double low, double high);

    /// Sets the mean distance of the points to come, in pixels; points are drawn large enough to touch.
    void SetSpacing(double pixels);
    /// Points outside the extent, and those without a place, are left out.
    void Draw(std::span<const LasPoint> points);
    /// Format_ARGB32_Premultiplied; null when no point was drawn.
    QImage Image() const;

  private:
    QRgb ColourOf(const LasPoint& point) const;

    const QRectF world_;
    const QSize size_;
    const double low_;
    const double high_;
    int side_ = 1;  ///< pixels of a point
    bool isEmpty_ = true;
    std::vector<float> heights_;  ///< above `low_`, of what each pixel shows
    std::vector<QRgb> colours_;
};

}  // namespace orvex
