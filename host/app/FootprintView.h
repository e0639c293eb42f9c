#pragma once
#include <QPixmap>
#include <QWidget>
#include <optional>
#include <set>

#include "host/app/CrsGroups.h"
#include "host/app/RasterPictures.h"
#include "host/app/ViewTransform.h"

namespace orvex {

struct LayerFile;
struct Project;

/// The extents of the files of one coordinate reference system, and small pictures of the rasters among them:
/// the wheel zooms about the cursor, dragging pans, a click selects, hovering names the file.
class FootprintView final : public QWidget {
    Q_OBJECT

  public:
    /// `project` must outlive the view.
    explicit FootprintView(const Project& project, QWidget* parent = nullptr);

    /// Shows the layers whose CRS is that of `wkt`, all of them fitted in.
    void ShowCrs(const std::string& wkt);
    /// Takes what is shown from the project again.
    void Reload();
    void FitAll();
    /// Fits the files that are selected; all when none is.
    void FitSelected();
    /// Marks files (layer and place within it); the view says nothing about it.
    void SetSelected(std::set<std::pair<std::size_t, std::size_t>> files);

    /// True while pictures of rasters are being read.
    bool IsLoading() const { return pictures_.IsLoading(); }

    QSize sizeHint() const override { return {640, 480}; }

  signals:
    /// The user clicked a file.
    void FileClicked(std::size_t layer, std::size_t file);
    /// What lies under the cursor, as one line; empty when the cursor has left.
    void Hovered(const QString& text);

  protected:
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void leaveEvent(QEvent* event) override;
    void changeEvent(QEvent* event) override;
    bool event(QEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

  private:
    void Redraw();
    void DrawBase();
    void AddLayer(std::size_t layer);
    void DrawPictures(QPainter& painter) const;
    void DrawFootprints(QPainter& painter) const;
    void StyleOutline(QPainter& painter, const FootprintSet::Footprint& footprint) const;
    void DrawOutline(QPainter& painter, const FootprintSet::Footprint& footprint) const;
    void DrawName(QPainter& painter, const FootprintSet::Footprint& footprint, const QRectF& pixels,
                  std::vector<QRectF>& names) const;
    void DrawMarked(QPainter& painter, std::size_t footprint, int width) const;
    std::optional<std::size_t> FootprintAt(const QPointF& pixel) const;
    const LayerFile& FileOf(const FootprintSet::Footprint& footprint) const;
    QString Describe(std::size_t footprint) const;

    const Project& project_;
    std::string wkt_;
    CrsGroups groups_;
    RasterPictures pictures_;
    FootprintSet footprints_;
    ViewTransform transform_;
    std::set<std::pair<std::size_t, std::size_t>> selected_;
    std::optional<std::size_t> hovered_;
    QPixmap base_;  ///< grid and footprints, drawn once per change so that hovering costs nothing
    bool baseIsOld_ = true;
    bool fitWhenSized_ = true;  ///< until the user zooms or pans, a new size fits again
    QPointF pressed_;
    QPointF last_;
    bool dragging_ = false;
};

}  // namespace orvex
