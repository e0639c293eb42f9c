#pragma once
#include <QGraphicsScene>
#include <QGraphicsView>
#include <functional>
#include <set>
#include <utility>
#include <vector>

#include "host/app/FeatureShapes.h"
#include "host/app/MapPoints.h"
#include "host/app/PhotoCard.h"
#include "host/app/Project.h"
#include "host/app/Thumbnails.h"

namespace orvex {

class FootprintItem;

/// The map: footprints of the files of one coordinate system, thumbnails of the rasters, shapes of the
/// shapefiles and points of the LAS files that have companions among them. The wheel zooms about the cursor,
/// dragging pans, a click selects, hovering names the file.
class MapView final : public QGraphicsView {
    Q_OBJECT

  public:
    /// `project` must outlive the view.
    explicit MapView(const Project& project, QWidget* parent = nullptr);

    /// WKT of the CRS that is shown.
    const std::string& Crs() const { return wkt_; }
    /// Shows the layers whose CRS is that of `wkt` and fits them in.
    void ShowCrs(const std::string& wkt);
    /// Takes what is shown from the project again; nothing is selected then.
    void Reload();
    /// Closes the companions of LAS files, so that they can be replaced. Until ReloadPoints() the map shows
    /// the points that it has.
    void ClosePoints() { points_.Close(); }
    void ReloadPoints();
    void FitAll();
    /// Fits the selected files; all when none is.
    void FitSelected();
    /// Highlights files (layer and place in it) without emitting a signal.
    void SetSelected(const std::set<std::pair<std::size_t, std::size_t>>& files);

    /// True while thumbnails, shapes and points are being read.
    bool IsLoading() const {
        return thumbnails_.IsLoading() || shapes_.IsLoading() || photoCard_.IsLoading() ||
               points_.IsLoading();
    }

    QSize sizeHint() const override { return {640, 480}; }

  signals:
    /// The user clicked a file.
    void FileClicked(std::size_t layer, std::size_t file);
    /// The user clicked where no file lies.
    void GroundClicked();
    /// The user asked for the menu of a file; place on the screen.
    void MenuRequested(std::size_t layer, std::size_t file, const QPoint& place);
    /// What lies under the cursor, as one line; empty when the cursor has left.
    void Hovered(const QString& text);

  protected:
    void drawForeground(QPainter* painter, const QRectF& exposed) override;
    void resizeEvent(QResizeEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void contextMenuEvent(QContextMenuEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void focusInEvent(QFocusEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;
    bool viewportEvent(QEvent* event) override;

  private:
    void AddLayer(std::size_t layer);
    void UpdateThumbnails();
    void UpdateShapes();
    void UpdatePoints();
    void ShowPoints();
    std::vector<PointFile> PointFiles() const;
    QString CompanionRemark(const LayerFile& file) const;
    std::vector<std::wstring> PathsOf(LayerKind kind) const;
    QRectF ExtentOf(const std::function<bool(const FootprintItem&)>& isMeant) const;
    void LookAt(const QPointF& world, double pixelsPerUnit);
    void Fit(const QRectF& world, double margin);
    void ZoomAbout(const QPointF& pixel, double factor);
    void Pan(const QPointF& pixels);
    void Hover(const QPointF& pixel);
    void SetHovered(FootprintItem* item);
    void DrawNames(QPainter& painter) const;
    QString SignOf(const FootprintItem& item) const;
    double PixelsPerUnit() const { return transform().m11(); }
    QPointF ToWorld(const QPointF& pixel) const;
    FootprintItem* FootprintAt(const QPointF& pixel) const;
    const LayerFile& FileOf(const FootprintItem& item) const;
    bool IsPhoto(const FootprintItem* item) const;
    QString Describe(const FootprintItem& item) const;

    const Project& project_;
    std::string wkt_;
    CrsGroups groups_;
    Thumbnails thumbnails_;
    Thumbnails shapes_{nullptr, ReadShapes};  ///< of the shapefiles
    MapPoints points_;                        ///< of the LAS files
    PhotoCard photoCard_;
    QGraphicsScene scene_;
    std::vector<FootprintItem*> footprints_;  ///< owned by the scene, as the next
    std::vector<QGraphicsItem*> thumbnailItems_;
    std::vector<QGraphicsItem*> shapeItems_;
    QGraphicsItem* pointItem_ = nullptr;
    FootprintItem* hovered_ = nullptr;
    QPointF centre_;            ///< scene coordinates at the middle of the view
    bool fitWhenSized_ = true;  ///< until the user zooms or pans, a new size fits again
    QPointF pressed_;
    QPointF last_;
    bool isDragging_ = false;
};

}  // namespace orvex
