#include "raster/page/AddRasterFilesPP.h"

#include "dialog/HandlerGuard.h"
#include "raster/page/RasterOptionsWidget.h"
#include "raster/page/RasterPageControls.h"

namespace orvex {

AddRasterFilesPP::AddRasterFilesPP(const PageContext& context, QWidget* parent)
    : RasterListPage(context, parent), store_(*context.params), options_(new RasterOptionsWidget) {
    const RasterPageOptions stored = ReadRasterPageOptions(Services().options);
    options_->SetOptions(stored);
    connect(options_, &RasterOptionsWidget::LayerRulesChanged, this,
            Guarded(Services().prompts, L"OnLayerOptions", [this] { Update(); }));
    Start(EditModel(), options_, stored.detailColumns);
}

AddRasterFilesPP::~AddRasterFilesPP() {
    Detach();
    EditModel().Change([this](std::vector<RasterRow>& rows) { store_.HandOver(rows); });
}

void AddRasterFilesPP::RowsChanged() {
    store_.Withdraw();
    AssignLayers(Params().existingRasterLayers, {.append = options_->Options().append}, LayerCrs::OfTheFile,
                 L"Raster Layer_");
}

std::vector<ControlState> AddRasterFilesPP::ControlStates(const FileListState& state) const {
    return RasterControlStates(state);
}

bool AddRasterFilesPP::Store() {
    RasterPageOptions options = options_->Options();
    options.detailColumns = DetailColumnsShown();
    store_.Store(Model().Rows(), ShownRecords(), options, Services().options);
    return true;
}

}  // namespace orvex
