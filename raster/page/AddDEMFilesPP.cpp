#include "raster/page/AddDEMFilesPP.h"

#include <optional>
#include <string>

#include "dialog/HandlerGuard.h"
#include "raster/page/DemOptionsWidget.h"
#include "raster/page/RasterPageControls.h"
#include "settings/SystemSettings.h"
#include "support/ProjectPath.h"

namespace orvex {

AddDEMFilesPP::AddDEMFilesPP(const PageContext& context, QWidget* parent)
    : RasterListPage(context, parent), store_(*context.params), options_(new DemOptionsWidget) {
    DemPageOptions stored;
    RunGuarded(Services().prompts, L"ReadOptions",
               [&] { stored = ReadDemPageOptions(SystemSettings(Services().hostObjects)); });
    options_->SetOptions(stored);
    ConnectOptions();
    Start(EditModel(), options_, stored.detailColumns);
}

AddDEMFilesPP::~AddDEMFilesPP() {
    Detach();
}

void AddDEMFilesPP::ConnectOptions() {
    UserPrompts& prompts = Services().prompts;
    connect(options_, &DemOptionsWidget::LayerRulesChanged, this,
            Guarded(prompts, L"OnLayerOptions", [this] { Update(); }));
    connect(options_, &DemOptionsWidget::BrowseRequested, this,
            Guarded(prompts, L"OnBrowseFolder", [this] { OnBrowseFolder(); }));
    connect(options_, &DemOptionsWidget::InsertProjectPathRequested, this,
            Guarded(prompts, L"OnInsertProjectPath", [this] { OnInsertProjectPath(); }));
}

void AddDEMFilesPP::RowsChanged() {
    store_.Withdraw();
    const DemPageOptions options = options_->Options();
    // The converted files are LAS files, so it is the LAS layers that they can be appended to.
    AssignLayers(Params().existingLasLayers, {.append = options.append},
                 options.ignoreCrs ? LayerCrs::None : LayerCrs::OfTheFile, L"DEM LAS Layer_");
}

std::vector<ControlState> AddDEMFilesPP::ControlStates(const FileListState& state) const {
    return DemControlStates(state);
}

void AddDEMFilesPP::OnBrowseFolder() {
    if (const std::optional<std::wstring> folder =
            Services().pickers.PickFolder(Text(text::kDemOutputFolderTitle))) {
        options_->SetFolder(WithTrailingSeparator(*folder));
    }
}

void AddDEMFilesPP::OnInsertProjectPath() {
    try {
        options_->SetFolder(InsertProjectPathToken(options_->Options().lasFolder));
    } catch (...) {
        ShowMessage(Text(text::kProjectPathInsertFailed), text::kProjectPathErrorCaption, PromptIcon::Error);
    }
}

bool AddDEMFilesPP::Store() {
    DemPageOptions options = options_->Options();
    options.detailColumns = DetailColumnsShown();
    const DemStoreOutcome outcome = store_.Store(Model().Rows(), ShownRecords(), options,
                                                 options_->ThinningText(), Services().hostObjects);
    if (outcome == DemStoreOutcome::ThinningRefused) {
        ShowMessage(Text(text::kThinningRefused), text::kThinningCaption, PromptIcon::Warning);
        options_->EditThinning();
        return false;
    }
    return true;
}

}  // namespace orvex
