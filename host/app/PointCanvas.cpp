#include "host/app/PointCanvas.h"

#include <QColor>
#include <algorithm>
#include <cmath>
#include <cstring>
#include <limits>

namespace orvex {

namespace {

constexpr int kShades = 64;
constexpr std::size_t kClasses = 19;  ///< with a colour of their own, or one by height; then all others
constexpr double kLargestSide = 6;    ///< pixels

/// Colours of the classes that the LAS format names; none where the height gives it.
constexpr std::array<QRgb, kClasses + 1> kClassColours = {
    0,          0,          0xff9c7f54,  // never classified, unclassified, ground
    0xffa5c96f, 0xff67ad4d, 0xff2f8a3e,  // low, medium, high vegetation
    0xffe0663f, 0xffd63fd0, 0xffbfae7a,  // building, low noise, model key point
    0xff3d82d8, 0xff7a7f8c, 0xff9499a3,  // water, rail, road surface
    0xffb0b0b0, 0xffe8c33a, 0xffe8a03a,  // overlap, wire guard, wire conductor
    0xff8a6fc0, 0xffc07fb0, 0xffd1b37f,  // transmission tower, wire connector, bridge deck
    0xffd63fd0, 0xffb0b0b0};             // high noise, all others

QRgb ByHeight(double share) {
    // From blue over green and yellow to red.
    return QColor::fromHsvF(static_cast<float>(0.62 * (1 - share)), 0.75F, 0.9F).rgb();
}

QRgb Shaded(QRgb colour, double share) {
    const double light = 0.62 + 0.5 * share;
    const auto channel = [light](int value) { return std::min(255, static_cast<int>(value * light)); };
    return qRgb(channel(qRed(colour)), channel(qGreen(colour)), channel(qBlue(colour)));
}

using ColourTable = std::array<std::array<QRgb, kShades>, kClasses + 1>;

ColourTable MakeColourTable() {
    ColourTable table;
    for (std::size_t type = 0; type < table.size(); ++type) {
        for (int shade = 0; shade < kShades; ++shade) {
            const double share = static_cast<double>(shade) / (kShades - 1);
            const QRgb colour = kClassColours[type];
            table[type][static_cast<std::size_t>(shade)] =
                colour == 0 ? ByHeight(share) : Shaded(colour, share);
        }
    }
    return table;
}

}  // namespace

PointCanvas::PointCanvas(const QRectF& world, const QSize& pixels, double low, double high)
    : world_(world), size_(pixels), low_(low), high_(high) {
    const std::size_t count =
        static_cast<std::size_t>(size_.width()) * static_cast<std::size_t>(size_.height());
    heights_.assign(count, -std::numeric_limits<float>::infinity());
    colours_.assign(count, 0);
}

void PointCanvas::SetSpacing(double pixels) {
    side_ = static_cast<int>(std::clamp(std::ceil(1.5 * pixels), 1.0, kLargestSide));
}

QRgb PointCanvas::ColourOf(const LasPoint& point) const {
    static const ColourTable table = MakeColourTable();
    const double share = high_ > low_ ? (point.z - low_) / (high_ - low_) : 0.5;
    // Written so that no number at all counts as the lowest.
    const double shade = share > 0 ? std::min(share, 1.0) * (kShades - 1) : 0;
    return table[std::min<std::size_t>(point.classification, kClasses)][static_cast<std::size_t>(shade)];
}

void PointCanvas::Draw(std::span<const LasPoint> points) {
    const double acrossPixels = size_.width() / world_.width();
    const double downPixels = size_.height() / world_.height();
    for (const LasPoint& point : points) {
        const double x = (point.x - world_.left()) * acrossPixels;
        const double y = (world_.bottom() - point.y) * downPixels;
        if (!(x >= 0 && x < size_.width() && y >= 0 && y < size_.height())) {
            continue;
        }
        const auto height = static_cast<float>(point.z - low_);
        const QRgb colour = ColourOf(point);
        const int left = std::max(static_cast<int>(x) - side_ / 2, 0);
        const int top = std::max(static_cast<int>(y) - side_ / 2, 0);
        const int right = std::min(left + side_, size_.width());
        const int bottom = std::min(top + side_, size_.height());
        for (int row = top; row < bottom; ++row) {
            for (int column = left; column < right; ++column) {
                const auto at = static_cast<std::size_t>(row) * static_cast<std::size_t>(size_.width()) +
                                static_cast<std::size_t>(column);
                if (height > heights_[at]) {
                    heights_[at] = height;
                    colours_[at] = colour;
                    isEmpty_ = false;
                }
            }
        }
    }
}

QImage PointCanvas::Image() const {
    if (isEmpty_) {
        return {};
    }
    QImage image(size_, QImage::Format_ARGB32_Premultiplied);
    const auto width = static_cast<std::size_t>(size_.width());
    for (int row = 0; row < size_.height(); ++row) {
        std::memcpy(image.scanLine(row), &colours_[static_cast<std::size_t>(row) * width],
                    width * sizeof(QRgb));
    }
    return image;
}

}  // namespace orvex
