#pragma once
#include <QWidget>

#include "raster/page/RasterPageOptions.h"

class QCheckBox;

namespace orvex {

/// The options below the grid of the raster page. Every control is named "c" and its id.
class RasterOptionsWidget final : public QWidget {
    Q_OBJECT

  public:
    explicit RasterOptionsWidget(QWidget* parent = nullptr);

    void SetOptions(const RasterPageOptions& options);
    /// The controls' values.
    RasterPageOptions Options() const;

  signals:
    void LayerRulesChanged();  ///< append

  private:
    QCheckBox* append_;
    QCheckBox* pyramid_;
};

}  // namespace orvex
