#include "host/app/PhotoCard.h"

#include <QBuffer>
#include <QImageReader>
#include <QPainter>
#include <QPalette>
#include <QPixmapCache>
#include <QPolygonF>
#include <QStringList>
#include <QWidget>
#include <algorithm>
#include <cmath>
#include <numbers>

#include "host/app/HostText.h"
#include "host/app/MapItems.h"
#include "orvexcommon/OrvexUtilities.h"

namespace orvex {

namespace {

constexpr std::size_t kKept = 64;
constexpr int kPreviewWidth = 200;  ///< pixels; the same for the height
constexpr int kPadding = 6;
constexpr double kDistance = 18;      ///< pixels between a photo's place and its card
constexpr double kDot = 4;            ///< pixels, the radius
constexpr double kDirectionStep = 4;  ///< degrees between the directions that marks are painted in
/// A preview is small, and a header that says otherwise is not believed.
constexpr int kLargestPreview = 8192;

QStringList LinesOf(const LayerFile& file) {
    QStringList lines = {ToQString(FileNameOf(file.path))};
    if (!file.photo.timeUtc.empty()) {
        lines.append(ToQString(file.photo.timeUtc));
    }
    if (file.photo.heading) {
        lines.append(
            HostText(text::kPhotoHeading, {static_cast<int>(std::lround(*file.photo.heading) % 360)}));
    }
    return lines;
}

/// Beside and below the place; on the other side where the view ends.
QRectF BesidePlace(const QSizeF& size, const QPointF& place, const QRectF& view) {
    QRectF card(place + QPointF(kDistance, kDistance), size);
    if (card.right() > view.right()) {
        card.moveRight(place.x() - kDistance);
    }
    if (card.bottom() > view.bottom()) {
        card.moveBottom(place.y() - kDistance);
    }
    card.moveLeft(std::max(card.left(), view.left()));
    card.moveTop(std::max(card.top(), view.top()));
    return card;
}

/// With the pen and the brush of `like`. `direction`: in steps; negative for none.
QPixmap PaintMark(const QPainter& like, int direction) {
    const double ratio = like.device()->devicePixelRatio();
    const double half = kPhotoMarkRadius + 2;
    QPixmap mark(QSizeF(2 * half * ratio, 2 * half * ratio).toSize());
    mark.setDevicePixelRatio(ratio);
    mark.fill(Qt::transparent);
    QPainter painter(&mark);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(like.pen());
    painter.setBrush(like.brush());
    const QPointF place(half, half);
    if (direction >= 0) {
        constexpr double kHalfAngle = 0.42;  // radians
        const double angle = direction * kDirectionStep * std::numbers::pi / 180;
        const auto at = [&](double turned) {
            return place + kPhotoMarkRadius * QPointF(std::sin(turned), -std::cos(turned));
        };
        painter.drawPolygon(QPolygonF({place, at(angle - kHalfAngle), at(angle + kHalfAngle)}));
    }
    painter.drawEllipse(place, kDot, kDot);
    return mark;
}

}  // namespace

void DrawPhotoMark(QPainter& painter, const QPointF& place, const std::optional<double>& heading) {
    // A mark is painted once for each direction and colour: ten thousand of them take long to smooth.
    const int direction = heading ? static_cast<int>(std::lround(*heading / kDirectionStep)) : -1;
    const QString key = QString("photo %1 %2 %3 %4 %5")
                            .arg(direction)
                            .arg(painter.pen().color().rgba())
                            .arg(painter.pen().width())
                            .arg(painter.brush().color().rgba())
                            .arg(painter.device()->devicePixelRatio());
    QPixmap mark;
    if (!QPixmapCache::find(key, &mark)) {
        mark = PaintMark(painter, direction);
        QPixmapCache::insert(key, mark);
    }
    const double half = mark.deviceIndependentSize().width() / 2;
    painter.drawPixmap(place - QPointF(half, half), mark);
}

Thumbnail ReadPhotoPreview(const std::wstring& path, const std::function<bool()>& isCancelled,
                           const ThumbnailLimits& limits) {
    const std::string bytes = OrvexUtilities::GetExifThumbnail(path);
    if (bytes.empty() || isCancelled()) {
        return {{}, HostText(text::kPreviewNone)};
    }
    QByteArray data = QByteArray::fromRawData(bytes.data(), static_cast<qsizetype>(bytes.size()));
    QBuffer buffer(&data);
    QImageReader reader(&buffer, "jpeg");
    const QSize size = reader.size();
    if (size.isEmpty() || size.width() > kLargestPreview || size.height() > kLargestPreview) {
        return {{}, HostText(text::kPreviewNone)};
    }
    const int side = std::min(limits.longSide, kPreviewWidth);
    reader.setScaledSize(size.scaled(side, side, Qt::KeepAspectRatio).expandedTo({1, 1}));
    QImage image = reader.read();
    return image.isNull() ? Thumbnail{{}, HostText(text::kPreviewNone)}
                          : Thumbnail{image.convertToFormat(QImage::Format_ARGB32_Premultiplied), {}};
}

PhotoCard::PhotoCard(QObject* parent, Thumbnails::Read read)
    : QObject(parent), previews_(this, std::move(read)) {
    connect(&previews_, &Thumbnails::Changed, this, &PhotoCard::Changed);
}

void PhotoCard::SetPhoto(const LayerFile* photo) {
    if (photo == nullptr && !photo_) {
        return;
    }
    photo_ = photo == nullptr ? std::nullopt : std::optional(*photo);
    if (photo_) {
        std::erase(recent_, photo_->path);
        recent_.push_front(photo_->path);
        recent_.resize(std::min(recent_.size(), kKept));
        previews_.Request({recent_.begin(), recent_.end()});
    }
    emit Changed();
}

void PhotoCard::Draw(QPainter& painter, const QWidget& view, const QPointF& place) const {
    if (!photo_) {
        return;
    }
    const Thumbnail* const preview = previews_.Find(photo_->path);
    const QImage image = preview == nullptr ? QImage() : preview->image;
    QStringList lines = LinesOf(*photo_);
    if (preview != nullptr && image.isNull()) {
        lines.append(preview->problem);
    }
    const QFontMetrics metrics(view.font());
    double width = image.width();
    for (const QString& line : lines) {
        width = std::max<double>(width, std::min(metrics.horizontalAdvance(line), kPreviewWidth));
    }
    const double textTop = image.isNull() ? 0 : image.height() + kPadding;
    const double height = textTop + metrics.lineSpacing() * static_cast<double>(lines.size());
    const QRectF card = BesidePlace({width + 2 * kPadding, height + 2 * kPadding}, place,
                                    QRectF(view.rect()).adjusted(2, 2, -2, -2));
    painter.fillRect(card, view.palette().color(QPalette::ToolTipBase));
    painter.setBrush(Qt::NoBrush);
    painter.setPen(Mixed(view.palette().color(QPalette::Base), view.palette().color(QPalette::Text), 0.4));
    painter.drawRect(card);
    const QRectF inside = card.adjusted(kPadding, kPadding, -kPadding, -kPadding);
    painter.drawImage(QPointF(inside.center().x() - image.width() / 2.0, inside.top()), image);
    painter.setPen(view.palette().color(QPalette::ToolTipText));
    QRectF row(inside.left(), inside.top() + textTop, inside.width(), metrics.lineSpacing());
    for (const QString& line : lines) {
        painter.drawText(row, Qt::AlignLeft | Qt::AlignVCenter,
                         metrics.elidedText(line, Qt::ElideMiddle, static_cast<int>(row.width())));
        row.translate(0, row.height());
    }
}

}  // namespace orvex
