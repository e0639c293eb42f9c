#include "host/app/MapView.h"

#include <QPainter>
#include <algorithm>
#include <cmath>
#include <utility>

#include "host/app/FeatureItem.h"
#include "host/app/HostText.h"
#include "host/app/LayerTreeModel.h"
#include "host/app/MapItems.h"

namespace orvex {

namespace {

constexpr double kMargin = 40;
constexpr double kHitSlack = 3;          ///< pixels beside a footprint that still hit it
constexpr double kSmallestScale = 1e-9;  ///< pixels per unit
constexpr double kLargestScale = 1e7;
/// Units across the view for a place without extent.
constexpr double kWidthAroundPoint = 100;
constexpr double kDegreesAroundPhoto = 0.002;

}  // namespace

MapView::MapView(const Project& project, QWidget* parent) : QGraphicsView(parent), project_(project) {
    setObjectName("footprints");
    setAccessibleName(HostText(text::kFootprintsAccessibleName));
    setFrameShape(NoFrame);
    setMinimumSize(200, 150);
    setFocusPolicy(Qt::StrongFocus);
    setMouseTracking(true);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setTransformationAnchor(NoAnchor);
    setResizeAnchor(NoAnchor);
    // The size of small items in the scene changes with the scale, which an index does not follow.
    scene_.setItemIndexMethod(QGraphicsScene::NoIndex);
    setScene(&scene_);
    LookAt({}, 1);
    connect(&thumbnails_, &Thumbnails::Changed, this, &MapView::UpdateThumbnails);
    connect(&photoCard_, &PhotoCard::Changed, viewport(), qOverload<>(&QWidget::update));
    connect(&shapes_, &Thumbnails::Changed, this, &MapView::UpdateShapes);
    connect(&points_, &MapPoints::Changed, this, &MapView::UpdatePoints);
}

void MapView::ShowCrs(const std::string& wkt) {
    wkt_ = wkt;
    Reload();
    FitAll();
}

void MapView::Reload() {
    SetHovered(nullptr);
    footprints_.clear();
    thumbnailItems_.clear();
    shapeItems_.clear();
    pointItem_ = nullptr;
    scene_.clear();
    for (std::size_t layer = 0; layer < project_.layers.size(); ++layer) {
        if (groups_.Of(project_.layers[layer].wkt) == groups_.Of(wkt_)) {
            AddLayer(layer);
        }
    }
    if (!footprints_.empty()) {
        scene_.addItem(new GridItem);
    }
    const std::vector<std::wstring> rasters = PathsOf(LayerKind::Raster);
    for (FootprintItem* item : footprints_) {
        item->SetLight(!rasters.empty());
    }
    thumbnails_.Request(rasters);
    UpdateThumbnails();
    shapes_.Request(PathsOf(LayerKind::Feature));
    UpdateShapes();
    ReloadPoints();
    viewport()->update();
}

void MapView::ReloadPoints() {
    points_.SetFiles(PointFiles());
    ShowPoints();
}

/// Full paths of the files of a kind that are shown.
std::vector<std::wstring> MapView::PathsOf(LayerKind kind) const {
    std::vector<std::wstring> paths;
    for (const FootprintItem* item : footprints_) {
        if (project_.layers[item->Layer()].kind == kind) {
            paths.push_back(FileOf(*item).path);
        }
    }
    return paths;
}

void MapView::AddLayer(std::size_t layer) {
    const auto& [name, wkt, files, kind] = project_.layers[layer];
    for (std::size_t file = 0; file < files.size(); ++file) {
        const QPolygonF corners = FootprintOf(kind, files[file]);
        if (!corners.isEmpty()) {
            footprints_.push_back(new FootprintItem(*this, layer, file, kind, corners));
            footprints_.back()->SetHeading(files[file].photo.heading);
            scene_.addItem(footprints_.back());
        }
    }
}

void MapView::UpdateThumbnails() {
    qDeleteAll(thumbnailItems_);
    thumbnailItems_.clear();
    for (FootprintItem* item : footprints_) {
        if (project_.layers[item->Layer()].kind != LayerKind::Raster) {
            continue;
        }
        const Thumbnail* thumbnail = thumbnails_.Find(FileOf(*item).path);
        const bool isThere = thumbnail != nullptr && !thumbnail->image.isNull();
        if (isThere) {
            thumbnailItems_.push_back(new ThumbnailItem(thumbnail->image, FileOf(*item).raster));
            scene_.addItem(thumbnailItems_.back());
        }
        item->SetHasThumbnail(isThere);
    }
}

void MapView::UpdateShapes() {
    qDeleteAll(shapeItems_);
    shapeItems_.clear();
    for (FootprintItem* item : footprints_) {
        const Thumbnail* read = shapes_.Find(FileOf(*item).path);
        if (read != nullptr && read->shapes != nullptr) {
            shapeItems_.push_back(new FeatureItem(read->shapes, LayerTreeModel::ColourOf(item->Layer())));
            scene_.addItem(shapeItems_.back());
            item->SetHasThumbnail(!read->shapes->isCut);
        }
    }
}

std::vector<PointFile> MapView::PointFiles() const {
    std::vector<PointFile> files;
    for (const FootprintItem* item : footprints_) {
        const LayerFile& file = FileOf(*item);
        if (project_.layers[item->Layer()].kind == LayerKind::Las && !file.footprintOnly) {
            files.push_back({file.PointsPath(), item->Extent(), file.min[2], file.max[2], file.thinning});
        }
    }
    return files;
}

/// Asks for the points of what the view shows.
void MapView::ShowPoints() {
    // As the view draws: it is at whole pixels.
    const QRectF pixels(viewport()->rect());
    points_.Show(viewportTransform().inverted().mapRect(pixels),
                 (pixels.size() * viewport()->devicePixelRatioF()).toSize());
}

void MapView::UpdatePoints() {
    delete std::exchange(pointItem_, nullptr);
    if (const auto& [image, world] = points_.Picture(); !image.isNull()) {
        RasterInfo place;
        place.width = image.width();
        place.height = image.height();
        place.transform = {world.left(),
                           world.width() / image.width(),
                           0,
                           world.bottom(),
                           0,
                           -world.height() / image.height()};
        pointItem_ = new ThumbnailItem(image, place);
        pointItem_->setZValue(kPointOrder);
        scene_.addItem(pointItem_);
    }
    for (FootprintItem* item : footprints_) {
        if (project_.layers[item->Layer()].kind == LayerKind::Las) {
            const CompanionUse* const use = points_.UseOf(FileOf(*item).PointsPath());
            item->SetHasThumbnail(use != nullptr && use->isShown);
        }
    }
}

void MapView::FitAll() {
    Fit(ExtentOf([](const FootprintItem&) { return true; }), kMargin);
    fitWhenSized_ = true;
}

void MapView::FitSelected() {
    // Fitted as all are, the map follows the size of the window.
    const auto selected = static_cast<std::size_t>(scene_.selectedItems().size());
    if (selected == 0 || selected == footprints_.size()) {
        FitAll();
        return;
    }
    Fit(ExtentOf([](const FootprintItem& item) { return item.isSelected(); }), 2 * kMargin);
    fitWhenSized_ = false;
}

QRectF MapView::ExtentOf(const std::function<bool(const FootprintItem&)>& isMeant) const {
    QPolygonF corners;  // of rectangles, those without size would not count
    for (const FootprintItem* item : footprints_) {
        corners += isMeant(*item) ? item->Corners() : QPolygonF();
    }
    return corners.boundingRect();
}

void MapView::Fit(const QRectF& world, double margin) {
    const double width = std::max(1.0, viewport()->width() - 2 * margin);
    const double height = std::max(1.0, viewport()->height() - 2 * margin);
    const double byWidth = world.width() > 0 ? width / world.width() : kLargestScale;
    const double byHeight = world.height() > 0 ? height / world.height() : kLargestScale;
    const bool isPoint = world.width() <= 0 && world.height() <= 0;
    const bool hasPhotos =
        std::ranges::any_of(footprints_, [this](const FootprintItem* item) { return IsPhoto(item); });
    LookAt(world.center(), isPoint ? width / (hasPhotos ? kDegreesAroundPhoto : kWidthAroundPoint)
                                   : std::min(byWidth, byHeight));
}

void MapView::LookAt(const QPointF& world, double pixelsPerUnit) {
    centre_ = world;
    const double scale = std::clamp(pixelsPerUnit, kSmallestScale, kLargestScale);
    setTransform(QTransform::fromScale(scale, -scale));
    // A scene rectangle that is smaller than the view is put at its middle. Scroll bars, which count pixels
    // in 32 bits, would not reach every place at every scale.
    constexpr double kTiny = 1e-300;
    setSceneRect(QRectF(centre_, QSizeF(kTiny, kTiny)));
    ShowPoints();
}

void MapView::ZoomAbout(const QPointF& pixel, double factor) {
    const QPointF before = ToWorld(pixel);
    LookAt(centre_, PixelsPerUnit() * factor);
    LookAt(centre_ + before - ToWorld(pixel), PixelsPerUnit());
    fitWhenSized_ = false;
}

void MapView::Pan(const QPointF& pixels) {
    LookAt(centre_ - QPointF(pixels.x(), -pixels.y()) / PixelsPerUnit(), PixelsPerUnit());
    fitWhenSized_ = false;
}

void MapView::SetSelected(const std::set<std::pair<std::size_t, std::size_t>>& files) {
    for (FootprintItem* item : footprints_) {
        item->setSelected(files.contains({item->Layer(), item->File()}));
    }
}

void MapView::drawForeground(QPainter* painter, const QRectF&) {
    painter->save();
    painter->resetTransform();
    const QRect area = viewport()->rect();
    if (footprints_.empty()) {
        painter->setPen(palette().color(QPalette::Disabled, QPalette::Text));
        painter->drawText(
            area.adjusted(20, 20, -20, -20), Qt::AlignCenter | Qt::TextWordWrap,
            HostText(project_.IsEmpty() ? text::kFootprintsEmptyProject : text::kFootprintsNoExtent));
    } else {
        DrawNames(*painter);
        GridItem::DrawLabels(*painter, *this);
    }
    if (IsPhoto(hovered_)) {
        photoCard_.Draw(*painter, *viewport(), hovered_->Pixels().center());
    }
    if (hasFocus()) {
        painter->setPen(palette().color(QPalette::Highlight));
        painter->drawRect(area.adjusted(0, 0, -1, -1));
    }
    painter->restore();
}

/// What is to be known of a file's shapes beside its name; else empty.
QString MapView::SignOf(const FootprintItem& item) const {
    const Thumbnail* read = shapes_.Find(FileOf(item).path);
    return read != nullptr && read->shapes != nullptr && read->shapes->isCut
               ? " (" + HostText(text::kFeaturesPartly) + ')'
               : QString();
}

/// The name of each file inside its footprint, where there is room for it and no name yet.
void MapView::DrawNames(QPainter& painter) const {
    const QFontMetrics metrics(font());
    std::vector<QRectF> taken;
    for (const FootprintItem* item : footprints_) {
        const QRectF pixels = item->Pixels();
        if (!pixels.intersects(viewport()->rect()) || pixels.height() < 2 * metrics.height() ||
            pixels.width() < 8 * metrics.averageCharWidth()) {
            continue;
        }
        const QString name = ToQString(FileNameOf(FileOf(*item).path)) + SignOf(*item);
        const double room = std::min<double>(pixels.width(), viewport()->width());
        const QString text = metrics.elidedText(name, Qt::ElideMiddle, static_cast<int>(room) - 8);
        QRectF place(QPointF(), QSizeF(metrics.horizontalAdvance(text), metrics.height()));
        place.moveCenter(pixels.center());
        if (std::ranges::none_of(taken, [&](const QRectF& other) { return other.intersects(place); })) {
            taken.push_back(place);
            DrawLabel(painter, *viewport(), place, palette().color(QPalette::Text), text);
        }
    }
}

void MapView::resizeEvent(QResizeEvent* event) {
    QGraphicsView::resizeEvent(event);
    if (fitWhenSized_) {
        FitAll();
    } else {
        ShowPoints();
    }
}

QPointF MapView::ToWorld(const QPointF& pixel) const {
    // Exact; the view itself is at whole pixels.
    const QPointF fromCentre = pixel - QRectF(viewport()->rect()).center();
    return centre_ + QPointF(fromCentre.x(), -fromCentre.y()) / PixelsPerUnit();
}

/// The smallest footprint at a pixel; of equals the one drawn last.
FootprintItem* MapView::FootprintAt(const QPointF& pixel) const {
    const QPointF world = ToWorld(pixel);
    const auto areaOf = [](const FootprintItem& item) {
        return item.Extent().width() * item.Extent().height();
    };
    FootprintItem* best = nullptr;
    for (FootprintItem* item : footprints_) {
        if (item->Contains(world, kHitSlack / PixelsPerUnit()) &&
            (best == nullptr || areaOf(*item) <= areaOf(*best))) {
            best = item;
        }
    }
    return best;
}

const LayerFile& MapView::FileOf(const FootprintItem& item) const {
    return project_.layers[item.Layer()].files[item.File()];
}

/// False for null, too.
bool MapView::IsPhoto(const FootprintItem* item) const {
    return item != nullptr && project_.layers[item->Layer()].kind == LayerKind::Photo;
}

/// A line on the companion of a LAS file; empty if there is none, or nothing is known of it yet.
QString MapView::CompanionRemark(const LayerFile& file) const {
    const CompanionUse* const use = points_.UseOf(file.PointsPath());
    if (use == nullptr || (!use->isShown && use->reason.isEmpty())) {
        return {};
    }
    return '\n' + (use->isShown ? HostText(text::kMapPointsShown)
                                : HostText(text::kMapCompanionNotUsed, {ToWide(use->reason)}));
}

QString MapView::Describe(const FootprintItem& item) const {
    const Layer& layer = project_.layers[item.Layer()];
    const LayerFile& file = FileOf(item);
    const QString name = ToQString(file.path) + '\n' + ToQString(layer.name) + '\n';
    if (layer.kind == LayerKind::Las) {
        return name + HostText(text::kFootprintPointsTooltip, {GroupedNumber(file.points)}) +
               CompanionRemark(file);
    }
    if (layer.kind == LayerKind::Photo) {
        return name + ToQString(file.photo.timeUtc);
    }
    const bool isRaster = layer.kind == LayerKind::Raster;
    const Thumbnail* thumbnail = (isRaster ? thumbnails_ : shapes_).Find(file.path);
    const QString problem = thumbnail == nullptr ? QString() : thumbnail->problem;
    const QString size =
        isRaster ? HostText(text::kRecordRaster, {file.raster.width, file.raster.height, file.raster.bands})
                 : HostText(text::kFeatureCountTooltip, {GroupedNumber(file.feature.count)});
    return name + size + (problem.isEmpty() ? QString() : '\n' + problem);
}

}  // namespace orvex
