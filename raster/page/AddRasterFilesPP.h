#pragma once
#include "raster/page/RasterListPage.h"

namespace orvex {

/// The raster files page.
class AddRasterFilesPP final : public RasterListPage {
    Q_OBJECT

  public:
    explicit AddRasterFilesPP(const PageContext& context, QWidget* parent = nullptr);

    void HandOver() noexcept override;

  protected:
    void RowsChanged() override;
    bool Store() override;
};

}  // namespace orvex
