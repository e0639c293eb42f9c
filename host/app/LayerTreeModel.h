#pragma once
#include <QAbstractItemModel>
#include <QColor>

#include "host/app/Project.h"

namespace orvex {

/// The layers of a project and the files in them. It shows the project it was given and asks it for every
/// cell; Reload is called after each change.
class LayerTreeModel final : public QAbstractItemModel {
    Q_OBJECT

  public:
    /// kSize: points of LAS files, pixels of rasters, features of shapefiles.
    enum Column { kName, kSize, kFormat, kColumnCount };

    /// `project` must outlive the model.
    explicit LayerTreeModel(const Project& project, QObject* parent = nullptr);

    void Reload();
    /// The colour that a layer has here and on the map; distinct on light and dark grounds.
    static QColor ColourOf(std::size_t layer);
    static bool IsLayer(const QModelIndex& index);
    /// The layer that an index is or lies in.
    static std::size_t LayerOf(const QModelIndex& index);
    /// The file of an index that is no layer.
    static std::size_t FileOf(const QModelIndex& index);
    QModelIndex IndexOf(std::size_t layer, std::size_t file) const;

    QModelIndex index(int row, int column, const QModelIndex& parent = {}) const override;
    QModelIndex parent(const QModelIndex& child) const override;
    using QObject::parent;
    int rowCount(const QModelIndex& parent = {}) const override;
    int columnCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role) const override;

  private:
    QVariant LayerData(const Layer& layer, std::size_t index, int column, int role) const;
    QVariant FileData(LayerKind kind, const LayerFile& file, int column, int role) const;

    const Project& project_;
};

}  // namespace orvex
