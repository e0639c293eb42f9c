// What a file page does; how it is built is in FileListPageLayout.cpp.
#include "dialog/page/FileListPage.h"

#include <QDragEnterEvent>
#include <QDropEvent>
#include <QMimeData>
#include <QPushButton>
#include <QUrl>
#include <QWhatsThis>
#include <algorithm>
#include <utility>

#include "dialog/DialogProgress.h"
#include "dialog/HandlerGuard.h"
#include "dialog/details/DetailsHtml.h"
#include "dialog/grid/GridView.h"
#include "dialog/page/ControlWidget.h"
#include "dialog/page/FileRows.h"
#include "support/Files.h"

namespace orvex {

void FileListPage::OnAddFiles() {
    const PickedFiles picked = services_.pickers.PickFiles(description_.openFiles());
    switch (picked.outcome) {
        case PickOutcome::Picked:
            AddFiles(picked.paths);
            break;
        case PickOutcome::Cancelled:
            break;
        case PickOutcome::BufferTooSmall:
            ShowPickFailure(description_.tooManyFiles);
            break;
        case PickOutcome::OutOfMemory:
            ShowPickFailure(description_.noMemory);
            break;
        case PickOutcome::Failed:
            ShowPickFailure(description_.pickFailed);
            break;
    }
}

void FileListPage::ShowPickFailure(const FixedText& text) const {
    if (!text.IsEmpty()) {
        ShowMessage(text.Get(), description_.pickCaption, PromptIcon::Error);
    }
}

void FileListPage::ShowMessage(std::wstring text, StringId caption, PromptIcon icon) const {
    services_.prompts.Show({std::move(text), Text(caption), icon, PromptButtons::Ok});
}

void FileListPage::OnAddFolder() {
    const auto folder = services_.pickers.PickFolder(Text(description_.folderTitle));
    if (!folder.has_value()) {
        return;
    }
    const PromptAnswer answer =
        services_.prompts.Show({description_.folderQuestion.Get(), Text(description_.folderCaption),
                                PromptIcon::Question, PromptButtons::YesNoCancel});
    if (answer == PromptAnswer::Yes || answer == PromptAnswer::No) {
        AddFound({*folder}, answer == PromptAnswer::Yes);
    }
}

void FileListPage::AddPaths(const std::vector<std::wstring>& paths) {
    if (!progress_.IsRunning()) {
        RunGuarded(services_.prompts, L"AddPaths", [&] { AddFound(paths, true); });
    }
}

void FileListPage::AddFound(std::vector<std::wstring> paths, bool recursive) {
    ScanRequest request{std::move(paths), description_.extensions, recursive, description_.folderExtensions};
    ScanResult found;
    {
        const DialogProgress::Run run(progress_);
        found = ScanPathsWithProgress(std::move(request), Text(description_.scanProgress), progress_);
    }
    if (const std::optional<Prompt> prompt = ScanPrompt(found, description_.scanTexts)) {
        services_.prompts.Show(*prompt);
    }
    if (!found.stopped && !found.files.empty()) {
        AddFiles(std::move(found.files));
    }
}

void FileListPage::AddFiles(std::vector<std::wstring> paths) {
    BeforeRowsChange();
    const bool wasEmpty = rows_->Count() == 0;
    const DialogProgress::Run run(progress_);
    const auto appended = [this, isFirst = wasEmpty]() mutable {
        if (std::exchange(isFirst, false)) {
            FitColumns();
        }
    };
    AddingSummary summary;
    try {
        summary = AddRows({std::move(paths), rows_->PathKeys(), rows_->Count()}, appended);
    } catch (...) {
        FilesAdded(wasEmpty);
        throw;
    }
    FilesAdded(wasEmpty);
    if (!summary.abandonedPath.empty()) {
        ShowMessage(Text(text::kLasFileNotAnswering) + L"\n\n" + summary.abandonedPath,
                    description_.pickCaption, PromptIcon::Warning);
    }
}

void FileListPage::FilesAdded(bool wasEmpty) {
    RowsChanged();
    if (wasEmpty && rows_->Count() > 0) {
        FitColumns();
        if (grid_->SelectedRows().empty()) {
            grid_->SelectRows({0});
        }
    }
    ShowDetails();
    EnableItems();
}

void FileListPage::Update() {
    RowsChanged();
    ShowDetails();
    EnableItems();
}

void FileListPage::OnRemove() {
    if (progress_.IsRunning()) {
        return;
    }
    BeforeRowsChange();
    rows_->Remove(SelectedRecords());
    grid_->ClearSelection();
    Update();
}

void FileListPage::OnClear() {
    BeforeRowsChange();
    rows_->Clear();
    Update();
}

void FileListPage::Release() {
    RunGuarded(services_.prompts, L"Release", [this] { OnClear(); });
}

bool FileListPage::DetailColumnsShown() const {
    return detailColumns_->isChecked();
}

void FileListPage::OnDetailColumns() {
    const bool shown = DetailColumnsShown();
    detailColumns_->setText(shown ? QStringLiteral("<<") : QStringLiteral(">>"));
    grid_->ShowDetailColumns(shown);
    FitColumns();
}

void FileListPage::FitColumns() {
    if (description_.fitsColumns) {
        grid_->FitColumns();
    }
}

void FileListPage::OnSelectAll() {
    grid_->SelectAll();
}

void FileListPage::OnRefresh() {
    BeforeRowsChange();
    const DialogProgress::Run run(progress_);
    if (RereadRows()) {
        FitColumns();  // what is new may need a wider column
    }
    Update();
}

void FileListPage::OnContextHelp() {
    QWhatsThis::enterWhatsThisMode();
}

void FileListPage::OnHelp() {
    if (!services_.help.Show(description_.helpTopic)) {
        ShowMessage(Text(text::kHelpOpenFailed), text::kAddFilesTitle, PromptIcon::Warning);
    }
}

std::vector<std::size_t> FileListPage::ShownRecords() const {
    std::vector<std::size_t> records;
    for (int row = 0; row < rows_->rowCount(); ++row) {
        records.push_back(rows_->RecordOfRow(row));
    }
    return records;
}

std::vector<std::size_t> FileListPage::SelectedRecords() const {
    std::vector<std::size_t> records;
    for (const int row : grid_->SelectedRows()) {
        records.push_back(rows_->RecordOfRow(row));
    }
    return records;
}

void FileListPage::ShowDetails() {
    const std::vector<std::size_t> records = SelectedRecords();
    details_->Show(records.empty() ? DetailsContent{{}, {TextHtml(Text(description_.nothingSelected))}}
                                   : Details(records));
}

std::vector<ControlState> FileListPage::ControlStates(const FileListState& state) const {
    return FileListStates(description_.controls, state);
}

void FileListPage::EnableItems() {
    const FileListState state{progress_.IsRunning(), rows_->Count(), grid_->SelectedRows().size()};
    for (const ControlState& control : ControlStates(state)) {
        findChild<QWidget*>(ControlName(control.id))->setEnabled(control.enabled);
    }
}

bool FileListPage::ValidateAndStore() {
    bool stored = false;
    return RunGuarded(services_.prompts, L"ValidateAndStore", [&] { stored = Store(); }) && stored;
}

bool FileListPage::Accepts(const std::wstring& path) const {
    return HasExtension(path, description_.extensions) || FolderExists(path);
}

void FileListPage::dragEnterEvent(QDragEnterEvent* event) {
    RunGuarded(services_.prompts, L"OnDragEnter", [&] {
        const QList<QUrl> urls = event->mimeData()->urls();
        const bool any = std::ranges::any_of(
            urls, [this](const QUrl& url) { return Accepts(ToWidePath(url.toLocalFile())); });
        if (any && !progress_.IsRunning()) {
            event->acceptProposedAction();
        }
    });
}

void FileListPage::dropEvent(QDropEvent* event) {
    event->acceptProposedAction();
    RunGuarded(services_.prompts, L"OnDropFiles", [&] { OnDropFiles(*event); });
}

void FileListPage::OnDropFiles(const QDropEvent& event) {
    std::vector<std::wstring> paths;
    for (const QUrl& url : event.mimeData()->urls()) {
        paths.push_back(ToWidePath(url.toLocalFile()));
    }
    AddPaths(paths);
}

}  // namespace orvex
