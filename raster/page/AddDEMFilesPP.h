#pragma once
#include "raster/page/RasterListPage.h"

namespace orvex {

/// The DEM files page.
class AddDEMFilesPP final : public RasterListPage {
    Q_OBJECT

  public:
    explicit AddDEMFilesPP(const PageContext& context, QWidget* parent = nullptr);

  protected:
    void RowsChanged() override;
    bool Store() override;
};

}  // namespace orvex
