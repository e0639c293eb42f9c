#pragma once
#include <QObject>
#include <QPointF>
#include <deque>
#include <functional>
#include <optional>
#include <string>

#include "host/app/Project.h"
#include "host/app/Thumbnails.h"

class QPainter;
class QWidget;

namespace orvex {

/// Draws a photo's place: a dot, and a wedge in the direction it was taken. `place` in pixels of the view;
/// the pen and the brush of the painter are used.
void DrawPhotoMark(QPainter& painter, const QPointF& place, const std::optional<double>& heading);

/// Pixels from a photo's place to the farthest part of its mark.
inline constexpr double kPhotoMarkRadius = 15;

/// The preview that a photo's file holds; see Thumbnails::Read. The photo itself is not decoded.
Thumbnail ReadPhotoPreview(const std::wstring& path, const std::function<bool()>& isCancelled,
                           const ThumbnailLimits& limits);

/// What the map shows beside the photo under the cursor: its preview, which is read on a worker thread, its
/// name, time and heading. The previews of the last photos are kept.
class PhotoCard final : public QObject {
    Q_OBJECT

  public:
    explicit PhotoCard(QObject* parent = nullptr, Thumbnails::Read read = ReadPhotoPreview);

    /// Null: none.
    void SetPhoto(const LayerFile* photo);
    /// Draws the card, if there is a photo, beside a place and inside the view. Painter in pixels of the
    /// view.
    void Draw(QPainter& painter, const QWidget& view, const QPointF& place) const;
    bool IsLoading() const { return previews_.IsLoading(); }

  signals:
    /// The card is to be drawn again.
    void Changed();

  private:
    Thumbnails previews_;
    std::optional<LayerFile> photo_;
    std::deque<std::wstring> recent_;  ///< paths of the photos whose previews are kept, the last one first
};

}  // namespace orvex
