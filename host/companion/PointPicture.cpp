#include "host/companion/PointPicture.h"

#include <QPainter>
#include <algorithm>
#include <cmath>

namespace orvex {
namespace {

using Rectangle = std::array<double, 4>;

Rectangle WithSides(Rectangle rectangle) {
    for (const std::size_t axis : {0U, 1U}) {
        if (!(rectangle[axis + 2] > rectangle[axis])) {
            rectangle[axis] -= 0.5;
            rectangle[axis + 2] = rectangle[axis] + 1;
        }
    }
    return rectangle;
}

int HeightFor(const Rectangle& rectangle, int width) {
    const double ratio = (rectangle[3] - rectangle[1]) / (rectangle[2] - rectangle[0]);
    return std::max(1, static_cast<int>(std::lround(width * std::clamp(ratio, 1.0 / 16, 4.0))));
}

/// Place from the left or from the bottom, 0 to 1 inside of the rectangle.
double Part(const Rectangle& rectangle, std::size_t axis, double value) {
    return (value - rectangle[axis]) / (rectangle[axis + 2] - rectangle[axis]);
}

/// Number of a part among `count`; the end belongs to the last.
int Step(double part, int count) {
    return std::min(static_cast<int>(part * count), count - 1);
}

constexpr QRgb kBackground = 0xff101418;

// Blue over green to yellow: brighter is higher, for colour-blind eyes and in grey as well.
QRgb HeightColour(float part) {
    constexpr std::array<std::array<float, 3>, 5> kStops{
        {{70, 90, 190}, {40, 130, 170}, {33, 165, 140}, {110, 205, 90}, {253, 231, 37}}};
    const float place = std::clamp(part, 0.0F, 1.0F) * (kStops.size() - 1);
    const auto stop = std::min<std::size_t>(static_cast<std::size_t>(place), kStops.size() - 2);
    const float rest = place - static_cast<float>(stop);
    const auto channel = [&](std::size_t i) {
        return static_cast<int>(kStops[stop][i] + rest * (kStops[stop + 1][i] - kStops[stop][i]));
    };
    return qRgb(channel(0), channel(1), channel(2));
}

QRgb ClassColour(std::uint8_t classification) {
    constexpr std::array<QRgb, 19> kColours{
        0xff8c8c8c,  // never classified
        0xffb4b4b4,  // unclassified
        0xff9c6b3c,  // ground
        0xffb7d788,  // low, medium and high vegetation
        0xff6fb04a, 0xff2f7d32,
        0xffd1452f,                          // building
        0xffe000e0,                          // low noise
        0xff909090,                          // key point
        0xff3277c8,                          // water
        0xff704c8c,                          // rail
        0xff6a6a6a,                          // road
        0xffa0a0a0,                          // overlap
        0xffe6b800, 0xffe69100, 0xffc87800,  // wires and their towers
        0xffff6fae, 0xff00a0a0,              // connectors, bridge deck
        0xffe000e0,                          // high noise
    };
    return classification < kColours.size() ? kColours[classification] : 0xffffffff;
}

}  // namespace

PointPicture::PointPicture(const Rectangle& rectangle, int width, std::uint64_t expectedPoints)
    : rectangle_(WithSides(rectangle)), width_(width), height_(HeightFor(rectangle_, width)) {
    constexpr double kMostDot = 7;
    constexpr double kDotPart = 0.6;  // of the distance between points that lie even
    constexpr double kPointsPerCell = 4;
    const double points = static_cast<double>(std::max<std::uint64_t>(expectedPoints, 1));
    const double area = static_cast<double>(width_) * height_;
    dot_ = static_cast<int>(std::clamp(std::round(std::sqrt(area / points) * kDotPart), 1.0, kMostDot));
    const double side = std::max(std::sqrt(area * kPointsPerCell / points), 1.0);
    cellColumns_ = std::max(1, static_cast<int>(width_ / side));
    cellRows_ = std::max(1, static_cast<int>(height_ / side));
    pixels_.resize(static_cast<std::size_t>(width_) * static_cast<std::size_t>(height_));
    cells_.resize(static_cast<std::size_t>(cellColumns_) * static_cast<std::size_t>(cellRows_));
}

void PointPicture::Add(const std::array<double, 3>& position, std::uint8_t classification) {
    const double right = Part(rectangle_, 0, position[0]);
    const double up = Part(rectangle_, 1, position[1]);
    if (!(right >= 0 && right <= 1 && up >= 0 && up <= 1)) {
        return;
    }
    ++points_;
    cells_[static_cast<std::size_t>(Step(up, cellRows_)) * static_cast<std::size_t>(cellColumns_) +
           static_cast<std::size_t>(Step(right, cellColumns_))] = true;
    const Pixel pixel{static_cast<float>(position[2]), classification, true};
    Dot(Step(right, width_) - dot_ / 2, height_ - 1 - Step(up, height_) - dot_ / 2, pixel);
}

void PointPicture::Dot(int x, int y, const Pixel& pixel) {
    for (int row = std::max(y, 0); row < std::min(y + dot_, height_); ++row) {
        for (int column = std::max(x, 0); column < std::min(x + dot_, width_); ++column) {
            Pixel& old = pixels_[static_cast<std::size_t>(row) * static_cast<std::size_t>(width_) +
                                 static_cast<std::size_t>(column)];
            if (!old.isDrawn || old.height < pixel.height) {
                old = pixel;
            }
        }
    }
}

double PointPicture::CoveredCells() const {
    return static_cast<double>(std::ranges::count(cells_, true)) / static_cast<double>(cells_.size());
}

std::array<float, 2> PointPicture::HeightRange() const {
    std::vector<float> heights;
    for (const Pixel& pixel : pixels_) {
        if (pixel.isDrawn && std::isfinite(pixel.height)) {
            heights.push_back(pixel.height);
        }
    }
    if (heights.empty()) {
        return {};
    }
    std::ranges::sort(heights);
    const std::size_t outliers = heights.size() / 100;
    return {heights[outliers], heights[heights.size() - 1 - outliers]};
}

QImage PointPicture::Image(PointColour colour) const {
    const auto [low, high] = HeightRange();
    const float span = high > low ? high - low : 1;
    QImage image(width_, height_, QImage::Format_RGB32);
    for (int row = 0; row < height_; ++row) {
        auto* const line = reinterpret_cast<QRgb*>(image.scanLine(row));
        for (int column = 0; column < width_; ++column) {
            const Pixel& pixel = pixels_[static_cast<std::size_t>(row) * static_cast<std::size_t>(width_) +
                                         static_cast<std::size_t>(column)];
            if (!pixel.isDrawn) {
                line[column] = kBackground;
            } else if (colour == PointColour::Height) {
                line[column] = HeightColour((pixel.height - low) / span);
            } else {
                line[column] = ClassColour(pixel.classification);
            }
        }
    }
    return image;
}

QImage DrawOutlines(const Rectangle& rectangle, int width, const std::vector<Outline>& outlines) {
    const Rectangle frame = WithSides(rectangle);
    QImage image(width, HeightFor(frame, width), QImage::Format_RGB32);
    image.fill(kBackground);
    QPainter painter(&image);
    const double right = image.width() - 1;
    const double down = image.height() - 1;
    for (const Outline& outline : outlines) {
        painter.setPen(QColor(HeightColour(outline.colour)));
        const QPointF topLeft(Part(frame, 0, outline.rectangle[0]) * right,
                              (1 - Part(frame, 1, outline.rectangle[3])) * down);
        const QPointF bottomRight(Part(frame, 0, outline.rectangle[2]) * right,
                                  (1 - Part(frame, 1, outline.rectangle[1])) * down);
        painter.drawRect(QRectF(topLeft, bottomRight));
    }
    return image;
}

}  // namespace orvex
