#include "host/app/LayerTreeModel.h"

#include <QIcon>
#include <numeric>

#include "host/app/HostText.h"
#include "host/app/RecordCloud.h"
#include "orvexcommon/OrvexUtilities.h"

namespace orvex {

namespace {

/// The internal id of a layer; that of a file is its layer's place plus one.
constexpr quintptr kLayerId = 0;

/// True for files that hold points or features whose number is known.
bool IsCounted(LayerKind kind) {
    return kind == LayerKind::Las || kind == LayerKind::Feature;
}

/// Points of a LAS file, features of a shapefile.
std::uint64_t CountOf(LayerKind kind, const LayerFile& file) {
    return kind == LayerKind::Las ? file.points : file.feature.count;
}

std::uint64_t CountOf(const Layer& layer) {
    return std::accumulate(
        layer.files.begin(), layer.files.end(), std::uint64_t{0},
        [&](std::uint64_t sum, const LayerFile& file) { return sum + CountOf(layer.kind, file); });
}

/// Points, features or pixels; of a raster that could not be read nothing is known.
QString SizeOf(LayerKind kind, const LayerFile& file) {
    if (!IsCounted(kind) && kind != LayerKind::Raster) {
        return {};
    }
    if (kind != LayerKind::Raster) {
        return ToQString(GroupedNumber(CountOf(kind, file)));
    }
    return file.raster.width == 0 ? QString()
                                  : HostText(text::kTreeRasterSize, {file.raster.width, file.raster.height});
}

/// Plain name of a shapefile's geometry: measures and heights are not told apart.
StringId GeometryName(std::int32_t shapeType) {
    constexpr std::int32_t kWithHeights = 10;
    constexpr std::int32_t kMultiPatch = 31;
    switch (shapeType == kMultiPatch ? shapeType : shapeType % kWithHeights) {
        case 1:
        case 8:
            return text::kFeaturePoints;
        case 3:
            return text::kFeatureLines;
        case 5:
        case kMultiPatch:
            return text::kFeaturePolygons;
        default:
            return text::kTreeNoGeometry;
    }
}

/// When the photo was taken, or that it was taken nowhere.
QString FormatOf(const PhotoInfo& photo) {
    if (!photo.position) {
        return HostText(text::kTreePhotoWithoutPosition);
    }
    return photo.timeUtc.empty() ? HostText(text::kTreePhoto) : ToQString(photo.timeUtc);
}

QString FormatOf(LayerKind kind, const LayerFile& file) {
    if (kind == LayerKind::Photo) {
        return FormatOf(file.photo);
    }
    if (kind == LayerKind::Cloud) {
        return HostText(file.cloud.isPresigned ? text::kTreePresignedUrl : text::kTreeCloudLayer);
    }
    if (kind == LayerKind::Las) {
        return HostText(text::kTreeLasFormat, {file.version / 10, file.version % 10, file.pointFormat});
    }
    if (kind != LayerKind::Raster) {
        return HostText(GeometryName(file.feature.shapeType));
    }
    const QString format = ToQString(file.raster.driver);
    return file.raster.PixelToWorld()
               ? format
               : HostText(text::kTreeRasterWithoutPlace, {file.raster.driver}).trimmed();
}

/// In place of a colour, which the map does not show.
QIcon CloudIcon() {
    QIcon icon;
    for (const int size : {16, 32}) {
        icon.addFile(QString(":/orvexhost/cloud-%1.png").arg(size), {size, size});
    }
    return icon;
}

/// A line about a file that the map does not show.
QString PlaceRemark(LayerKind kind, const LayerFile& file) {
    if (kind == LayerKind::Cloud) {
        return '\n' + HostText(text::kCloudExtentUnknown);
    }
    const bool isNowhere = kind == LayerKind::Raster && !file.raster.PixelToWorld();
    return isNowhere ? '\n' + HostText(text::kRasterWithoutPlaceTooltip) : QString();
}

}  // namespace

LayerTreeModel::LayerTreeModel(const Project& project, QObject* parent)
    : QAbstractItemModel(parent), project_(project) {}

void LayerTreeModel::Reload() {
    beginResetModel();
    endResetModel();
}

QColor LayerTreeModel::ColourOf(std::size_t layer) {
    constexpr QRgb kColours[] = {0xFF2F7ED8, 0xFFE07B24, 0xFF2E9E62, 0xFFB34FC0,
                                 0xFFD64550, 0xFF17A0A8, 0xFF9A8B1F, 0xFF7467E0};
    return QColor::fromRgba(kColours[layer % std::size(kColours)]);
}

bool LayerTreeModel::IsLayer(const QModelIndex& index) {
    return index.isValid() && index.internalId() == kLayerId;
}

std::size_t LayerTreeModel::LayerOf(const QModelIndex& index) {
    return static_cast<std::size_t>(IsLayer(index) ? static_cast<quintptr>(index.row())
                                                   : index.internalId() - 1);
}

std::size_t LayerTreeModel::FileOf(const QModelIndex& index) {
    return static_cast<std::size_t>(index.row());
}

QModelIndex LayerTreeModel::IndexOf(std::size_t layer, std::size_t file) const {
    return createIndex(static_cast<int>(file), 0, static_cast<quintptr>(layer) + 1);
}

QModelIndex LayerTreeModel::index(int row, int column, const QModelIndex& parent) const {
    if (!hasIndex(row, column, parent)) {
        return {};
    }
    return parent.isValid() ? createIndex(row, column, static_cast<quintptr>(parent.row()) + 1)
                            : createIndex(row, column, kLayerId);
}

QModelIndex LayerTreeModel::parent(const QModelIndex& child) const {
    if (!child.isValid() || IsLayer(child)) {
        return {};
    }
    return createIndex(static_cast<int>(LayerOf(child)), 0, kLayerId);
}

int LayerTreeModel::rowCount(const QModelIndex& parent) const {
    if (!parent.isValid()) {
        return static_cast<int>(project_.layers.size());
    }
    return IsLayer(parent) && parent.column() == 0
               ? static_cast<int>(project_.layers[LayerOf(parent)].files.size())
               : 0;
}

int LayerTreeModel::columnCount(const QModelIndex&) const {
    return kColumnCount;
}

QVariant LayerTreeModel::data(const QModelIndex& index, int role) const {
    if (!index.isValid()) {
        return {};
    }
    if (role == Qt::TextAlignmentRole && index.column() == kSize) {
        return QVariant(Qt::AlignRight | Qt::AlignVCenter);
    }
    const Layer& layer = project_.layers[LayerOf(index)];
    return IsLayer(index) ? LayerData(layer, LayerOf(index), index.column(), role)
                          : FileData(layer.kind, layer.files[FileOf(index)], index.column(), role);
}

QVariant LayerTreeModel::LayerData(const Layer& layer, std::size_t index, int column, int role) const {
    if (role == Qt::DecorationRole && column == kName) {
        return layer.kind == LayerKind::Cloud ? QVariant(CloudIcon()) : QVariant(ColourOf(index));
    }
    if (role == Qt::ToolTipRole && layer.kind == LayerKind::Cloud) {
        return FileData(layer.kind, layer.files.front(), column, role);
    }
    if (role == Qt::ToolTipRole) {
        const std::string name = OrvexUtilities::CrsGetCRSName(layer.wkt);
        return name.empty() ? HostText(text::kNoCrs) : QString::fromStdString(name);
    }
    if (role != Qt::DisplayRole) {
        return {};
    }
    switch (column) {
        case kName:
            return ToQString(layer.name);
        case kSize:
            return IsCounted(layer.kind) ? ToQString(GroupedNumber(CountOf(layer))) : QString();
        default:
            return HostText(text::kTreeLayerFiles, {layer.files.size()});
    }
}

QVariant LayerTreeModel::FileData(LayerKind kind, const LayerFile& file, int column, int role) const {
    if (role == Qt::ToolTipRole) {
        return TooltipText(ToQString(kind == LayerKind::Cloud ? ShownPath(kind, file.path) : file.path) +
                           PlaceRemark(kind, file));
    }
    if (role != Qt::DisplayRole) {
        return {};
    }
    switch (column) {
        case kName:
            return ToQString(kind == LayerKind::Cloud ? FileNameOfUrl(file.path) : FileNameOf(file.path));
        case kSize:
            return SizeOf(kind, file);
        default:
            return FormatOf(kind, file);
    }
}

QVariant LayerTreeModel::headerData(int section, Qt::Orientation orientation, int role) const {
    if (orientation != Qt::Horizontal || role != Qt::DisplayRole) {
        return {};
    }
    switch (section) {
        case kName:
            return HostText(text::kLayerTreeTitle);
        case kSize:
            return HostText(text::kTreeSize);
        case kFormat:
            return HostText(text::kInspectFormat);
        default:
            return {};
    }
}

}  // namespace orvex
