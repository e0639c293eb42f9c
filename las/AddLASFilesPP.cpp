#include "las/AddLASFilesPP.h"

#include <QDragEnterEvent>
#include <QDropEvent>
#include <QMimeData>
#include <QPushButton>
#include <QUrl>
#include <algorithm>
#include <iterator>

#include "dialog/DialogProgress.h"
#include "dialog/FolderScan.h"
#include "dialog/HandlerGuard.h"
#include "dialog/grid/GridView.h"
#include "las/AddLASFilesModel.h"
#include "las/LasControlWidget.h"
#include "las/LasDetailsPanel.h"
#include "las/LasOptionsWidget.h"
#include "las/LasPageControls.h"
#include "las/LasPageTasks.h"
#include "settings/OptionStore.h"
#include "support/Files.h"
#include "support/Format.h"
#include "support/HelpViewer.h"
#include "support/QtText.h"

namespace orvex {

AddLASFilesPP::~AddLASFilesPP() {
    SavePane();
    disconnect(grid_, nullptr, this, nullptr);
    grid_->SetModel(nullptr);
    model_->Change([this](std::vector<LasRow>& rows) { store_.HandOver(rows); });
}

void AddLASFilesPP::ReadOptions() {
    options_ = ReadLasPageOptions(services_.options);
    optionGroups_->SetOptions(options_);
    detailColumns_->setChecked(options_.detailColumns);
}

void AddLASFilesPP::OnAddFiles() {
    const PickedFiles picked = services_.pickers.PickFiles(LasOpenFilesRequest());
    switch (picked.outcome) {
        case PickOutcome::Picked:
            AddFiles(picked.paths);
            break;
        case PickOutcome::Cancelled:
            break;
        case PickOutcome::BufferTooSmall:
            ShowPickFailure(10048_lsid);
            break;
        case PickOutcome::OutOfMemory:
        case PickOutcome::Failed:
            ShowPickFailure(10052_lsid);
            break;
    }
}

void AddLASFilesPP::ShowPickFailure(StringId text) {
    services_.prompts.Show({Text(text), Text(10184_lsid), PromptIcon::Error, PromptButtons::Ok});
}

void AddLASFilesPP::OnAddFolder() {
    const auto folder = services_.pickers.PickFolder(Text(18251_lsid));
    if (!folder.has_value()) {
        return;
    }
    const PromptAnswer answer = services_.prompts.Show(
        {Text(13556_lsid), Text(18253_lsid), PromptIcon::Question, PromptButtons::YesNoCancel});
    if (answer == PromptAnswer::Yes || answer == PromptAnswer::No) {
        AddFound({*folder}, answer == PromptAnswer::Yes);
    }
}

void AddLASFilesPP::AddPaths(const std::vector<std::wstring>& paths) {
    if (!progress_.IsRunning()) {
        RunGuarded(services_.prompts, L"AddPaths", [&] { AddFound(paths, true); });
    }
}

void AddLASFilesPP::AddFound(std::vector<std::wstring> paths, bool recursive) {
    ScanResult found;
    {
        const DialogProgress::Run run(progress_);
        found = ScanPathsWithProgress({std::move(paths), LasExtensions(), recursive}, Text(13647_lsid),
                                      progress_);
    }
    if (const std::optional<Prompt> prompt = ScanPrompt(found)) {
        services_.prompts.Show(*prompt);
    }
    if (!found.stopped && !found.files.empty()) {
        AddFiles(std::move(found.files));
    }
}

void AddLASFilesPP::AddFiles(std::vector<std::wstring> paths) {
    store_.Withdraw();
    const bool wasEmpty = model_->Rows().empty();
    const DialogProgress::Run run(progress_);
    AddingRequest request{std::move(paths), model_->PathKeys(), model_->Rows().size()};
    const auto deliver = [this](std::vector<LasInspection> batch) {
        const bool first = model_->Rows().empty() && !batch.empty();
        model_->Append(std::move(batch));
        if (first) {
            grid_->FitColumns();
        }
    };
    AddingSummary summary;
    try {
        summary = adder_.Add(std::move(request), deliver, services_.prompts, progress_);
    } catch (...) {
        FilesAdded(wasEmpty);
        throw;
    }
    FilesAdded(wasEmpty);
    if (!summary.abandonedPath.empty()) {
        services_.prompts.Show({Text(40678_lsid) + L"\n\n" + summary.abandonedPath, Text(10184_lsid),
                                PromptIcon::Warning, PromptButtons::Ok});
    }
}

void AddLASFilesPP::FilesAdded(bool wasEmpty) {
    AssignLayers();
    if (wasEmpty && !model_->Rows().empty()) {
        grid_->FitColumns();
        if (grid_->SelectedRows().empty()) {
            grid_->SelectRows({0});
        }
    }
    EnableItems();
}

void AddLASFilesPP::AssignLayers() {
    const LasLayerRules rules{optionGroups_->Options(options_).append,
                              optionGroups_->Options(options_).ignoreIncompatibleCrs};
    store_.Withdraw();
    model_->Change(
        [&](std::vector<LasRow>& rows) { orvex::AssignLayers(rows, params_.existingLasLayers, rules); });
    ShowDetails();
}

void AddLASFilesPP::OnRemove() {
    if (progress_.IsRunning()) {
        return;
    }
    store_.Withdraw();
    model_->Remove(SelectedRecords());
    grid_->ClearSelection();
    AssignLayers();
    EnableItems();
}

void AddLASFilesPP::OnClear() {
    store_.Withdraw();
    model_->Clear();
    ShowDetails();
    EnableItems();
}

void AddLASFilesPP::Release() {
    RunGuarded(services_.prompts, L"Release", [this] { OnClear(); });
}

void AddLASFilesPP::OnDetailColumns() {
    const bool shown = detailColumns_->isChecked();
    detailColumns_->setText(shown ? QStringLiteral("<<") : QStringLiteral(">>"));
    grid_->ShowDetailColumns(shown);
    grid_->FitColumns();
}

void AddLASFilesPP::OnRefresh() {
    store_.Withdraw();
    const DialogProgress::Run run(progress_);
    AddingRequest request;
    for (auto row = model_->Rows().rbegin(); row != model_->Rows().rend(); ++row) {
        request.paths.push_back(row->inspection.path);
    }
    std::vector<LasInspection> fresh;  // of the last rows, last first; fewer than rows when stopped
    MakeLasFileRefresher().Add(
        std::move(request),
        [&](std::vector<LasInspection> batch) { std::ranges::move(batch, std::back_inserter(fresh)); },
        services_.prompts, progress_);
    bool told = false;  // whether a row has something new to say, which may need a wider column
    model_->Change([&](std::vector<LasRow>& rows) {
        auto row = rows.rbegin();
        for (LasInspection& inspection : fresh) {
            told = told || inspection.summary != row->inspection.summary;
            (row++)->inspection = std::move(inspection);
        }
    });
    if (told) {
        grid_->FitColumns();
    }
    AssignLayers();
    EnableItems();
}

void AddLASFilesPP::OnHelp() {
    if (!services_.help.Show(HelpTopic::LasFiles)) {
        services_.prompts.Show({Text(40687_lsid), Text(40451_lsid), PromptIcon::Warning, PromptButtons::Ok});
    }
}

std::vector<std::size_t> AddLASFilesPP::ShownRecords() const {
    std::vector<std::size_t> records;
    for (int row = 0; row < model_->rowCount(); ++row) {
        records.push_back(model_->RecordOfRow(row));
    }
    return records;
}

std::vector<std::size_t> AddLASFilesPP::SelectedRecords() const {
    std::vector<std::size_t> records;
    for (const int row : grid_->SelectedRows()) {
        records.push_back(model_->RecordOfRow(row));
    }
    return records;
}

void AddLASFilesPP::ShowDetails() {
    details_->ShowRows(model_->Rows(), SelectedRecords());
}

void AddLASFilesPP::EnableItems() {
    LasPageState state;
    state.busy = progress_.IsRunning();
    state.rows = model_->Rows().size();
    state.selectedRows = grid_->SelectedRows().size();
    state.options = optionGroups_->Options(options_);
    for (const LasControlState& control : LasControlStates(state)) {
        findChild<QWidget*>(ControlName(control.id))->setEnabled(control.enabled);
    }
}

bool AddLASFilesPP::ValidateAndStore() {
    bool stored = false;
    return RunGuarded(services_.prompts, L"ValidateAndStore", [&] { stored = Store(); }) && stored;
}

bool AddLASFilesPP::Store() {
    LasPageOptions options = optionGroups_->Options(options_);
    options.detailColumns = detailColumns_->isChecked();
    const auto thinning = ParseThinning(optionGroups_->ThinningText());
    if (!thinning.has_value()) {
        services_.prompts.Show({Text(7669_lsid), Text(7670_lsid), PromptIcon::Warning, PromptButtons::Ok});
        optionGroups_->EditThinning();
        return false;
    }
    options.thinning = *thinning;
    LasReopened reopened;
    {
        const DialogProgress::Run run(progress_);
        const std::vector<std::size_t> order = ShownRecords();
        model_->Change([&](std::vector<LasRow>& rows) {
            reopened = store_.Store(rows, order, options, services_.options, progress_);
        });
    }
    if (!reopened.failures.empty()) {
        services_.prompts.Show(OpenFailuresPrompt(reopened.failures));
    }
    if (reopened.Succeeded()) {
        options_ = options;
    }
    ShowDetails();
    return reopened.Succeeded();
}

bool AddLASFilesPP::NeedsCompanionFiles() const {
    return std::ranges::any_of(model_->Rows(), [](const LasRow& row) {
        return row.inspection.file != nullptr && row.inspection.file->GetCompanionStatus() == 0;
    });
}

bool AddLASFilesPP::Accepts(const std::wstring& path) const {
    return HasExtension(path, LasExtensions()) || FolderExists(path);
}

void AddLASFilesPP::dragEnterEvent(QDragEnterEvent* event) {
    const QList<QUrl> urls = event->mimeData()->urls();
    const bool any =
        std::ranges::any_of(urls, [this](const QUrl& url) { return Accepts(ToWidePath(url.toLocalFile())); });
    if (any && !progress_.IsRunning()) {
        event->acceptProposedAction();
    }
}

void AddLASFilesPP::dropEvent(QDropEvent* event) {
    std::vector<std::wstring> paths;
    for (const QUrl& url : event->mimeData()->urls()) {
        paths.push_back(ToWidePath(url.toLocalFile()));
    }
    event->acceptProposedAction();
    AddPaths(paths);
}

}  // namespace orvex
