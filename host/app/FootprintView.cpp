#include "host/app/FootprintView.h"

#include <QHelpEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QToolTip>
#include <QWheelEvent>
#include <algorithm>
#include <cmath>

#include "host/app/GridPainter.h"
#include "host/app/HostText.h"
#include "host/app/LayerColours.h"
#include "host/app/Project.h"
#include "host/app/RasterPainter.h"

namespace orvex {

namespace {

constexpr double kMargin = 40;
constexpr double kHitSlack = 3;  ///< pixels beside a footprint that still hit it
constexpr double kZoomPerNotch = 1.25;
constexpr double kSmallest = 4;  ///< pixels; what is smaller is drawn this large

/// A footprint as it is drawn: never too small to be seen.
QRectF Drawn(const QRectF& pixels) {
    QRectF drawn = pixels;
    if (drawn.width() < kSmallest) {
        drawn.adjust(-(kSmallest - pixels.width()) / 2, 0, (kSmallest - pixels.width()) / 2, 0);
    }
    if (drawn.height() < kSmallest) {
        drawn.adjust(0, -(kSmallest - pixels.height()) / 2, 0, (kSmallest - pixels.height()) / 2);
    }
    return drawn;
}

}  // namespace

FootprintView::FootprintView(const Project& project, QWidget* parent) : QWidget(parent), project_(project) {
    setObjectName("footprints");
    setMouseTracking(true);
    setFocusPolicy(Qt::StrongFocus);
    setMinimumSize(200, 150);
    setAttribute(Qt::WA_OpaquePaintEvent);
    setAccessibleName(HostText(40870_lsid));
    connect(&pictures_, &RasterPictures::Changed, this, &FootprintView::Redraw);
}

void FootprintView::ShowCrs(const std::string& wkt) {
    wkt_ = wkt;
    Reload();
    FitAll();
}

void FootprintView::Reload() {
    footprints_.Clear();
    hovered_.reset();
    for (std::size_t layer = 0; layer < project_.layers.size(); ++layer) {
        if (groups_.Of(project_.layers[layer].wkt) == groups_.Of(wkt_)) {
            AddLayer(layer);
        }
    }
    std::vector<std::wstring> rasters;
    for (const auto& footprint : footprints_.All()) {
        if (project_.layers[footprint.layer].kind == LayerKind::Raster) {
            rasters.push_back(FileOf(footprint).path);
        }
    }
    pictures_.Want(rasters);
    Redraw();
}

void FootprintView::AddLayer(std::size_t layer) {
    const std::vector<LayerFile>& files = project_.layers[layer].files;
    for (std::size_t file = 0; file < files.size(); ++file) {
        if (project_.layers[layer].kind == LayerKind::Raster) {
            footprints_.Add(layer, file, CornersOf(files[file].raster));
            continue;
        }
        const auto& [min, max] = std::tie(files[file].min, files[file].max);
        footprints_.Add(layer, file, min[0], min[1], max[0], max[1]);
    }
}

void FootprintView::FitAll() {
    transform_.Fit(footprints_.Bounds(), size(), kMargin);
    fitWhenSized_ = true;
    Redraw();
}

void FootprintView::FitSelected() {
    FootprintSet selected;
    for (const auto& footprint : footprints_.All()) {
        if (selected_.contains({footprint.layer, footprint.file})) {
            const QRectF& world = footprint.world;
            selected.Add(0, 0, world.left(), world.top(), world.right(), world.bottom());
        }
    }
    if (selected.All().empty()) {
        FitAll();
        return;
    }
    transform_.Fit(selected.Bounds(), size(), 2 * kMargin);
    fitWhenSized_ = false;
    Redraw();
}

void FootprintView::SetSelected(std::set<std::pair<std::size_t, std::size_t>> files) {
    selected_ = std::move(files);
    update();
}

void FootprintView::Redraw() {
    baseIsOld_ = true;
    update();
}

void FootprintView::DrawBase() {
    base_ = QPixmap(size() * devicePixelRatioF());
    base_.setDevicePixelRatio(devicePixelRatioF());
    base_.fill(palette().color(QPalette::Base));
    QPainter painter(&base_);
    if (footprints_.All().empty()) {
        painter.setPen(palette().color(QPalette::Disabled, QPalette::Text));
        painter.drawText(rect().adjusted(20, 20, -20, -20), Qt::AlignCenter | Qt::TextWordWrap,
                         HostText(project_.IsEmpty() ? 40871_lsid : 40872_lsid));
    } else {
        DrawPictures(painter);
        DrawGridLines(painter, *this, transform_);
        DrawFootprints(painter);
        DrawGridLabels(painter, *this, transform_);
    }
    baseIsOld_ = false;
}

/// Below everything else, so that the grid and the other files stay visible.
void FootprintView::DrawPictures(QPainter& painter) const {
    for (const auto& footprint : footprints_.All()) {
        const LayerFile& file = FileOf(footprint);
        if (const QImage* picture = pictures_.Find(file.path)) {
            DrawRaster(painter, *picture, file.raster, transform_, rect());
        }
    }
}

void FootprintView::DrawFootprints(QPainter& painter) const {
    const QRectF view = rect();
    std::vector<QRectF> names;
    for (const auto& footprint : footprints_.All()) {
        const QRectF pixels = Drawn(transform_.ToPixel(footprint.world));
        if (!pixels.intersects(view)) {
            continue;
        }
        StyleOutline(painter, footprint);
        DrawOutline(painter, footprint);
        DrawName(painter, footprint, pixels, names);
    }
}

/// LAS files are filled, lightly where pictures are to shine through; rasters are their pictures, or dashed
/// while they have none.
void FootprintView::StyleOutline(QPainter& painter, const FootprintSet::Footprint& footprint) const {
    const QColor colour = LayerColour(footprint.layer);
    const bool isRaster = project_.layers[footprint.layer].kind == LayerKind::Raster;
    const bool isBare = isRaster && pictures_.Find(FileOf(footprint).path) == nullptr;
    QColor fill = colour;
    fill.setAlpha(pictures_.IsEmpty() ? 60 : 25);
    painter.setPen(QPen(colour, 1, isBare ? Qt::DashLine : Qt::SolidLine));
    painter.setBrush(isRaster ? QBrush(Qt::NoBrush) : QBrush(fill));
}

void FootprintView::DrawOutline(QPainter& painter, const FootprintSet::Footprint& footprint) const {
    // Far outside the view nothing is seen, and coordinates beyond what a painter takes would go wrong.
    const QRectF near = QRectF(rect()).adjusted(-10, -10, 10, 10);
    const QRectF pixels = transform_.ToPixel(footprint.world);
    if (footprint.corners.isEmpty() || std::max(pixels.width(), pixels.height()) < kSmallest) {
        painter.drawRect(Drawn(pixels).intersected(near));
    } else {
        painter.drawPolygon(transform_.ToPixel(footprint.corners).intersected(near));
    }
}

/// The file's name inside its footprint, where there is room for it and no name yet.
void FootprintView::DrawName(QPainter& painter, const FootprintSet::Footprint& footprint,
                             const QRectF& pixels, std::vector<QRectF>& names) const {
    const QFontMetrics metrics(font());
    if (pixels.height() < 2 * metrics.height() || pixels.width() < 8 * metrics.averageCharWidth()) {
        return;
    }
    const QString name = ToQString(FileNameOf(FileOf(footprint).path));
    const QString shown = metrics.elidedText(name, Qt::ElideMiddle, static_cast<int>(pixels.width()) - 8);
    QRectF place(QPointF(), QSizeF(metrics.horizontalAdvance(shown), metrics.height()));
    place.moveCenter(pixels.center());
    const auto isTaken = [&place](const QRectF& other) { return other.intersects(place); };
    if (std::any_of(names.begin(), names.end(), isTaken)) {
        return;
    }
    names.push_back(place);
    FillTextGround(painter, *this, place);
    painter.setPen(palette().color(QPalette::Text));
    painter.drawText(place, Qt::AlignCenter, shown);
}

void FootprintView::DrawMarked(QPainter& painter, std::size_t footprint, int width) const {
    const auto& marked = footprints_.All()[footprint];
    QColor colour = LayerColour(marked.layer);
    QColor fill = colour;
    fill.setAlpha(pictures_.Find(FileOf(marked).path) == nullptr ? 120 : 50);
    painter.setPen(QPen(Mixed(colour, palette().color(QPalette::Text), 0.4), width));
    painter.setBrush(fill);
    DrawOutline(painter, marked);
}

void FootprintView::paintEvent(QPaintEvent*) {
    if (baseIsOld_ || base_.size() != size() * devicePixelRatioF()) {
        DrawBase();
    }
    QPainter painter(this);
    painter.drawPixmap(0, 0, base_);
    if (!selected_.empty()) {
        for (std::size_t i = 0; i < footprints_.All().size(); ++i) {
            if (selected_.contains({footprints_.All()[i].layer, footprints_.All()[i].file})) {
                DrawMarked(painter, i, 2);
            }
        }
    }
    if (hovered_) {
        DrawMarked(painter, *hovered_, 1);
    }
    if (hasFocus()) {
        painter.setPen(palette().color(QPalette::Highlight));
        painter.setBrush(Qt::NoBrush);
        painter.drawRect(rect().adjusted(0, 0, -1, -1));
    }
}

void FootprintView::resizeEvent(QResizeEvent* event) {
    if (fitWhenSized_) {
        FitAll();
    } else {
        transform_.Resize(event->oldSize(), event->size());
        Redraw();
    }
}

void FootprintView::wheelEvent(QWheelEvent* event) {
    const double notches = event->angleDelta().y() / 120.0;
    if (notches == 0 || footprints_.All().empty()) {
        return;
    }
    transform_.ZoomAbout(event->position(), std::pow(kZoomPerNotch, notches));
    fitWhenSized_ = false;
    Redraw();
    event->accept();
}

void FootprintView::mousePressEvent(QMouseEvent* event) {
    if (event->button() == Qt::LeftButton || event->button() == Qt::MiddleButton) {
        pressed_ = last_ = event->position();
        dragging_ = false;
    }
}

void FootprintView::mouseMoveEvent(QMouseEvent* event) {
    if ((event->buttons() & (Qt::LeftButton | Qt::MiddleButton)) != 0) {
        if ((event->position() - pressed_).manhattanLength() > 4) {
            dragging_ = true;
            setCursor(Qt::ClosedHandCursor);
        }
        if (dragging_) {
            transform_.Pan(event->position() - last_);
            fitWhenSized_ = false;
            Redraw();
        }
        last_ = event->position();
        return;
    }
    const auto under = FootprintAt(event->position());
    if (under != hovered_) {
        hovered_ = under;
        update();
    }
    const QPointF world = transform_.ToWorld(event->position());
    const int decimals = GridDecimals(1 / transform_.PixelsPerUnit());
    const QString position =
        QString("%1  %2").arg(world.x(), 0, 'f', decimals).arg(world.y(), 0, 'f', decimals);
    emit Hovered(under ? position + QString("   ") + Describe(*under).section('\n', 0, 0) : position);
}

void FootprintView::mouseReleaseEvent(QMouseEvent* event) {
    unsetCursor();
    if (dragging_ || event->button() != Qt::LeftButton) {
        return;
    }
    if (const auto under = FootprintAt(event->position())) {
        const auto& footprint = footprints_.All()[*under];
        emit FileClicked(footprint.layer, footprint.file);
    }
}

void FootprintView::leaveEvent(QEvent*) {
    hovered_.reset();
    update();
    emit Hovered({});
}

void FootprintView::changeEvent(QEvent* event) {
    if (event->type() == QEvent::PaletteChange || event->type() == QEvent::FontChange) {
        Redraw();
    }
    QWidget::changeEvent(event);
}

bool FootprintView::event(QEvent* event) {
    if (event->type() != QEvent::ToolTip) {
        return QWidget::event(event);
    }
    const auto* help = static_cast<QHelpEvent*>(event);
    if (const auto under = FootprintAt(help->pos())) {
        QToolTip::showText(help->globalPos(), Describe(*under), this);
    } else {
        QToolTip::hideText();
    }
    return true;
}

void FootprintView::keyPressEvent(QKeyEvent* event) {
    const QPointF middle = QRectF(rect()).center();
    const double step = 60;
    switch (event->key()) {
        case Qt::Key_Plus:
            transform_.ZoomAbout(middle, kZoomPerNotch);
            break;
        case Qt::Key_Minus:
            transform_.ZoomAbout(middle, 1 / kZoomPerNotch);
            break;
        case Qt::Key_Left:
            transform_.Pan({step, 0});
            break;
        case Qt::Key_Right:
            transform_.Pan({-step, 0});
            break;
        case Qt::Key_Up:
            transform_.Pan({0, step});
            break;
        case Qt::Key_Down:
            transform_.Pan({0, -step});
            break;
        default:
            QWidget::keyPressEvent(event);
            return;
    }
    fitWhenSized_ = false;
    Redraw();
}

std::optional<std::size_t> FootprintView::FootprintAt(const QPointF& pixel) const {
    return footprints_.At(transform_.ToWorld(pixel), kHitSlack / transform_.PixelsPerUnit());
}

const LayerFile& FootprintView::FileOf(const FootprintSet::Footprint& footprint) const {
    return project_.layers[footprint.layer].files[footprint.file];
}

QString FootprintView::Describe(std::size_t footprint) const {
    const auto& found = footprints_.All()[footprint];
    const Layer& layer = project_.layers[found.layer];
    const LayerFile& file = FileOf(found);
    const QString name = ToQString(file.path) + '\n' + ToQString(layer.name) + '\n';
    if (layer.kind == LayerKind::Las) {
        return name + HostText(40873_lsid, {ToWide(GroupedNumber(file.points))});
    }
    const QString problem = pictures_.ProblemOf(file.path);
    const QString size = HostText(41427_lsid, {file.raster.width, file.raster.height, file.raster.bands});
    return name + size + (problem.isEmpty() ? QString() : '\n' + problem);
}

}  // namespace orvex
