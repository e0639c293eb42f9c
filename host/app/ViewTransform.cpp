#include "host/app/ViewTransform.h"

#include <algorithm>
#include <cmath>

namespace orvex {

namespace {

constexpr double kSmallestScale = 1e-9;  ///< pixels per unit
constexpr double kLargestScale = 1e7;
constexpr double kWidthOfNothing = 100;
/// Beyond any coordinate system; a damaged header that says so must not shrink all others to a dot.
constexpr double kFarthest = 1e12;

bool IsPlace(double value) {
    return std::abs(value) <= kFarthest;  // NaN is none
}

}  // namespace

void ViewTransform::Fit(const QRectF& world, const QSizeF& view, double marginPixels) {
    const double width = std::max(1.0, view.width() - 2 * marginPixels);
    const double height = std::max(1.0, view.height() - 2 * marginPixels);
    const bool isPoint = world.width() <= 0 && world.height() <= 0;
    const double byWidth = world.width() > 0 ? width / world.width() : kLargestScale;
    const double byHeight = world.height() > 0 ? height / world.height() : kLargestScale;
    scale_ = std::clamp(isPoint ? width / kWidthOfNothing : std::min(byWidth, byHeight), kSmallestScale,
                        kLargestScale);
    origin_ = QPointF(world.center().x() - view.width() / 2 / scale_,
                      world.center().y() + view.height() / 2 / scale_);
}

void ViewTransform::ZoomAbout(const QPointF& pixel, double factor) {
    const QPointF kept = ToWorld(pixel);
    scale_ = std::clamp(scale_ * factor, kSmallestScale, kLargestScale);
    origin_ = QPointF(kept.x() - pixel.x() / scale_, kept.y() + pixel.y() / scale_);
}

void ViewTransform::Pan(const QPointF& pixels) {
    origin_ -= QPointF(pixels.x() / scale_, -pixels.y() / scale_);
}

void ViewTransform::Resize(const QSizeF& from, const QSizeF& to) {
    Pan(QPointF((to.width() - from.width()) / 2, (to.height() - from.height()) / 2));
}

QPointF ViewTransform::ToPixel(const QPointF& world) const {
    return {(world.x() - origin_.x()) * scale_, (origin_.y() - world.y()) * scale_};
}

QPointF ViewTransform::ToWorld(const QPointF& pixel) const {
    return {origin_.x() + pixel.x() / scale_, origin_.y() - pixel.y() / scale_};
}

QRectF ViewTransform::ToPixel(const QRectF& world) const {
    return QRectF(ToPixel(world.topLeft()), ToPixel(world.bottomRight())).normalized();
}

QPolygonF ViewTransform::ToPixel(const QPolygonF& world) const {
    QPolygonF pixels;
    for (const QPointF& point : world) {
        pixels.append(ToPixel(point));
    }
    return pixels;
}

double GridStep(double pixelsPerUnit, double leastPixels) {
    const double least = leastPixels / pixelsPerUnit;
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
    constexpr double kMostLines = 1000;
    const double first = std::ceil(from / step);
    const double last = std::floor(to / step);
    std::vector<double> lines;
    // Far from the origin the next line can be the same number.
    if (last - first < kMostLines && first + 1 > first && last + 1 > last) {
        const int count = last < first ? 0 : static_cast<int>(last - first) + 1;
        lines.reserve(static_cast<std::size_t>(count));
        for (int i = 0; i < count; ++i) {
            lines.push_back((first + i) * step);
        }
    }
    return lines;
}

bool FootprintSet::Add(std::size_t layer, std::size_t file, double minX, double minY, double maxX,
                       double maxY) {
    if (!IsPlace(minX) || !IsPlace(minY) || !IsPlace(maxX) || !IsPlace(maxY) || minX > maxX || minY > maxY) {
        return false;
    }
    footprints_.push_back({layer, file, QRectF(minX, minY, maxX - minX, maxY - minY), {}});
    return true;
}

bool FootprintSet::Add(std::size_t layer, std::size_t file, const QPolygonF& corners) {
    const QRectF bounds = corners.boundingRect();
    const auto isPlace = [](const QPointF& corner) { return IsPlace(corner.x()) && IsPlace(corner.y()); };
    if (corners.isEmpty() || !std::ranges::all_of(corners, isPlace) ||
        !Add(layer, file, bounds.left(), bounds.top(), bounds.right(), bounds.bottom())) {
        return false;
    }
    const auto isAtCorner = [&bounds](const QPointF& corner) {
        return (corner.x() == bounds.left() || corner.x() == bounds.right()) &&
               (corner.y() == bounds.top() || corner.y() == bounds.bottom());
    };
    if (!std::ranges::all_of(corners, isAtCorner)) {
        footprints_.back().corners = corners;
    }
    return true;
}

void FootprintSet::Clear() {
    footprints_.clear();
}

QRectF FootprintSet::Bounds() const {
    if (footprints_.empty()) {
        return {};
    }
    double left = footprints_.front().world.left();
    double top = footprints_.front().world.top();
    double right = footprints_.front().world.right();
    double bottom = footprints_.front().world.bottom();
    for (const Footprint& footprint : footprints_) {
        left = std::min(left, footprint.world.left());
        top = std::min(top, footprint.world.top());
        right = std::max(right, footprint.world.right());
        bottom = std::max(bottom, footprint.world.bottom());
    }
    return {left, top, right - left, bottom - top};
}

std::optional<std::size_t> FootprintSet::At(const QPointF& world, double slack) const {
    std::optional<std::size_t> best;
    double bestArea = 0;
    for (std::size_t i = 0; i < footprints_.size(); ++i) {
        const QRectF& rect = footprints_[i].world;
        const QPolygonF& corners = footprints_[i].corners;
        const bool inside = world.x() >= rect.left() - slack && world.x() <= rect.right() + slack &&
                            world.y() >= rect.top() - slack && world.y() <= rect.bottom() + slack &&
                            (corners.isEmpty() || corners.containsPoint(world, Qt::OddEvenFill) ||
                             std::max(rect.width(), rect.height()) <= slack);
        const double area = rect.width() * rect.height();
        if (inside && (!best || area <= bestArea)) {
            best = i;
            bestArea = area;
        }
    }
    return best;
}

std::optional<std::size_t> FootprintSet::Find(std::size_t layer, std::size_t file) const {
    for (std::size_t i = 0; i < footprints_.size(); ++i) {
        if (footprints_[i].layer == layer && footprints_[i].file == file) {
            return i;
        }
    }
    return std::nullopt;
}

}  // namespace orvex
