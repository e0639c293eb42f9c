#include "las/page/AddLASFilesPP.h"

#include <algorithm>

#include "dialog/DialogProgress.h"
#include "dialog/HandlerGuard.h"
#include "las/LasLayers.h"
#include "las/page/LasDetailsView.h"
#include "las/page/LasOptionsWidget.h"
#include "las/page/LasPageControls.h"
#include "las/page/LasPageTasks.h"
#include "settings/OptionStore.h"

namespace orvex {

AddLASFilesPP::AddLASFilesPP(const PageContext& context, QWidget* parent)
    : FileListPageOf(context, DescribeLasPage(), MakeLasFileAdder(), MakeLasFileRefresher(), parent),
      store_(*context.params),
      options_(ReadLasPageOptions(Services().options)),
      optionGroups_(new LasOptionsWidget) {
    optionGroups_->SetOptions(options_);
    UserPrompts& prompts = Services().prompts;
    const auto enable = Guarded(prompts, L"EnableItems", [this] { EnableItems(); });
    connect(optionGroups_, &LasOptionsWidget::LayerRulesChanged, this,
            Guarded(prompts, L"OnLayerOptions", [this] { Update(); }));
    connect(optionGroups_, &LasOptionsWidget::OpenModeChanged, this, enable);
    connect(optionGroups_, &LasOptionsWidget::PyramidSettingsChanged, this, enable);
    Start(EditModel(), optionGroups_, options_.detailColumns);
}

AddLASFilesPP::~AddLASFilesPP() {
    Detach();
    EditModel().Change([this](std::vector<LasRow>& rows) { store_.HandOver(rows); });
}

void AddLASFilesPP::RowsChanged() {
    const LasPageOptions options = optionGroups_->Options(options_);
    const LasLayerRules rules{options.append, options.ignoreIncompatibleCrs};
    store_.Withdraw();
    EditModel().Change(
        [&](std::vector<LasRow>& rows) { AssignLayers(rows, Params().existingLasLayers, rules); });
}

DetailsContent AddLASFilesPP::Details(std::span<const std::size_t> records) const {
    return LasDetailsContent(Model().Rows(), records, DetailsPane().CaptionColour());
}

std::vector<ControlState> AddLASFilesPP::ControlStates(const FileListState& state) const {
    return LasControlStates({state, optionGroups_->Options(options_)});
}

bool AddLASFilesPP::Store() {
    LasPageOptions options = optionGroups_->Options(options_);
    options.detailColumns = DetailColumnsShown();
    const auto thinning = ParseThinning(optionGroups_->ThinningText());
    if (!thinning.has_value()) {
        ShowMessage(Text(text::kThinningRefused), text::kThinningCaption, PromptIcon::Warning);
        optionGroups_->EditThinning();
        return false;
    }
    options.thinning = *thinning;
    const LasReopened reopened = StoreRows(options);
    if (!reopened.failures.empty()) {
        Services().prompts.Show(OpenFailuresPrompt(reopened.failures));
    }
    if (reopened.Succeeded()) {
        options_ = options;
    }
    ShowDetails();
    return reopened.Succeeded();
}

LasReopened AddLASFilesPP::StoreRows(const LasPageOptions& options) {
    const DialogProgress::Run run(Progress());
    const std::vector<std::size_t> order = ShownRecords();
    LasReopened reopened;
    EditModel().Change([&](std::vector<LasRow>& rows) {
        reopened = store_.Store(rows, order, options, Services().options, Progress());
    });
    return reopened;
}

bool AddLASFilesPP::NeedsCompanionFiles() const {
    return std::ranges::any_of(Model().Rows(), [](const LasRow& row) {
        return row.inspection.file != nullptr && row.inspection.file->GetCompanionStatus() == 0;
    });
}

}  // namespace orvex
