#pragma once
#include <vector>

#include "raster/page/DemPageOptions.h"
#include "raster/page/DemPageStore.h"
#include "raster/page/RasterListPage.h"

namespace orvex {

class DemOptionsWidget;

/// The DEM files page. Every control is named "c" and its id.
class AddDEMFilesPP final : public RasterListPage<RasterUse::Dem> {
    Q_OBJECT

  public:
    explicit AddDEMFilesPP(const PageContext& context, QWidget* parent = nullptr);
    ~AddDEMFilesPP() override;

  protected:
    void BeforeRowsChange() override { store_.Withdraw(); }
    void RowsChanged() override;
    std::vector<ControlState> ControlStates(const FileListState& state) const override;
    bool Store() override;

  private:
    void ConnectOptions();
    void OnBrowseFolder();
    void OnInsertProjectPath();

    DemPageStore store_;
    DemOptionsWidget* options_;
};

}  // namespace orvex
