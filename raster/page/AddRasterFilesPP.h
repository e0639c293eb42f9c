#pragma once
#include <vector>

#include "raster/page/RasterListPage.h"
#include "raster/page/RasterPageOptions.h"
#include "raster/page/RasterPageStore.h"

namespace orvex {

class RasterOptionsWidget;

/// The raster files page. Every control is named "c" and its id.
class AddRasterFilesPP final : public RasterListPage<RasterUse::Image> {
    Q_OBJECT

  public:
    explicit AddRasterFilesPP(const PageContext& context, QWidget* parent = nullptr);
    ~AddRasterFilesPP() override;

  protected:
    void BeforeRowsChange() override { store_.Withdraw(); }
    void RowsChanged() override;
    std::vector<ControlState> ControlStates(const FileListState& state) const override;
    bool Store() override;

  private:
    RasterPageStore store_;
    RasterOptionsWidget* options_;
};

}  // namespace orvex
