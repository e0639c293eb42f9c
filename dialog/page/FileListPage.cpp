#include "dialog/page/FileListPage.h"

#include <QDragEnterEvent>
#include <QDropEvent>
#include <QMimeData>
#include <algorithm>
#include <string_view>
#include <unordered_set>
#include <utility>

#include "dialog/DialogProgress.h"
#include "dialog/grid/GridView.h"
#include "dialog/page/BackgroundRun.h"
#include "dialog/page/ListStatus.h"
#include "support/DataKinds.h"
#include "support/Files.h"
#include "support/Format.h"
#include "support/HandlerGuard.h"
#include "support/NaturalOrder.h"
#include "support/QtText.h"

namespace orvex {

FileListPage::FileListPage(const PageContext& context, const FileListPageDescription& description,
                           QWidget* parent)
    : ListPage(context, description, parent), description_(description), offers_(context.offers) {
    setAcceptDrops(true);
    MakeHistoryActions();
    connect(&Status(), &ListStatus::ContinueRequested, this,
            Guarded(Services().prompts, L"OnContinue", [this] { ContinueReading(); }));
    connect(&Status(), &ListStatus::SkipRequested, this, [this] { mustSkip_ = Progress().IsRunning(); });
}

std::vector<ListPage::PageButton> FileListPage::Buttons() {
    std::vector<PageButton> buttons{
        {description_.addFiles, ButtonImage::AddFiles, Usable::WhenIdle, L"OnAddFiles",
         [this] { OnAddFiles(); }},
        {description_.addFolder, ButtonImage::AddFolder, Usable::WhenIdle, L"OnAddFolder",
         [this] { OnAddFolder(); }},
    };
    std::ranges::move(ListPage::Buttons(), std::back_inserter(buttons));
    buttons.insert(buttons.end() - 1, {description_.refresh, ButtonImage::Refresh, Usable::WithRows,
                                       L"OnRefresh", [this] { ReadAgain(); }});
    return buttons;
}

void FileListPage::OnAddFiles() {
    // The system's dialog takes 255 characters of a title.
    constexpr std::size_t kLongestTitle = 255;
    OpenFilesRequest request;
    request.title = Text(description_.pickTitle).substr(0, kLongestTitle);
    request.initialFolder = FirstFolder();
    request.filters = description_.filters;
    const PickedFiles picked = Services().pickers.PickFiles(request);
    switch (picked.outcome) {
        case PickOutcome::Picked:
            RememberFolder(picked.paths.empty() ? std::wstring() : FolderOf(picked.paths.front()));
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

void FileListPage::OnAddFolder() {
    // Where the host says where files are picked, folders are picked from the process's current one.
    const auto folder = Services().pickers.PickFolder(
        Text(description_.folderTitle), description_.startsInInitialFolder ? std::wstring() : FirstFolder());
    if (!folder.has_value()) {
        return;
    }
    RememberFolder(*folder);
    const PromptAnswer answer =
        Services().prompts.Show({description_.folderQuestion.Get(), Text(description_.folderCaption),
                                 PromptIcon::Question, PromptButtons::YesNoCancel});
    if (answer == PromptAnswer::Yes || answer == PromptAnswer::No) {
        AddFound({*folder}, answer == PromptAnswer::Yes);
    }
}

void FileListPage::AddPaths(const std::vector<std::wstring>& paths) {
    if (!Progress().IsRunning()) {
        RunGuarded(Services().prompts, L"AddPaths", [&] { AddFound(paths, true); });
    }
}

/// Of the next picker: the last one's on this page. The host's comes before that of an earlier dialog.
std::wstring FileListPage::FirstFolder() const {
    if (!pickedFolder_.empty()) {
        return pickedFolder_;
    }
    if (description_.startsInInitialFolder && !Params().initialFolder.empty()) {
        return Params().initialFolder;
    }
    return FromUtf8(Services().options.ReadPlacement(description_.folderName).value_or(std::string()));
}

void FileListPage::RememberFolder(const std::wstring& folder) {
    if (!folder.empty()) {
        pickedFolder_ = folder;
        Services().options.WritePlacement(description_.folderName, ToUtf8(folder));
    }
}

void FileListPage::AddFound(std::vector<std::wstring> paths, bool recursive) {
    ScanResult found =
        Search({std::move(paths), description_.extensions, recursive, description_.folderExtensions});
    std::vector<std::wstring> others;
    if (offers_ != nullptr && !found.stopped) {
        others = offers_->TakeListed(found.ignored);
        std::ranges::move(offers_->TakeListed(found.others), std::back_inserter(others));
        SortNaturally(others);
        others.erase(std::unique(others.begin(), others.end()), others.end());
    }
    if (const std::optional<Prompt> prompt = ScanPrompt(found, description_.scanTexts, !others.empty())) {
        Services().prompts.Show(*prompt);
    }
    outcome_.clear();
    if (!found.stopped && !found.files.empty()) {
        AddFiles(found.files);
    }
    if (!others.empty() && unread_.empty()) {
        offers_->Offer(*this, others);
        Progress().SetOutcome(outcome_);  // of the page that is shown again
    }
}

ScanResult FileListPage::Search(ScanRequest request) {
    const DialogProgress::Run run(Progress());
    return ScanPathsWithProgress(std::move(request), Text(description_.scanProgress), Progress());
}

void FileListPage::AddFiles(const std::vector<std::wstring>& paths) {
    const AddingSummary summary = ReadNew(RequestFor(paths));
    KeepUnread(paths, summary);
    TellOutcome(summary);
}

void FileListPage::ContinueReading() {
    if (!Progress().IsRunning()) {
        AddingRequest request = RequestFor(unread_);
        request.asksAtMany = false;
        const AddingSummary summary = ReadNew(std::move(request));
        KeepUnread(std::vector(unread_), summary);  // only now: a run that threw can be continued as well
        TellOutcome(summary);
    }
}

/// How many files were found, and what became of them.
void FileListPage::TellOutcome(const AddingSummary& summary) {
    std::wstring text = FormatText(Text(text::kFilesFound), {summary.offered}) +
                        FormatText(Text(text::kOfThemAdded), {summary.added});
    const std::pair<StringId, std::size_t> parts[] = {{text::kOfThemListed, summary.skipped},
                                                      {text::kOfThemUnread, summary.unread.size()}};
    for (const auto& [part, count] : parts) {
        text += count == 0 ? std::wstring() : FormatText(Text(part), {count});
    }
    outcome_ = std::move(text);
    Progress().SetOutcome(outcome_);
    if (!summary.abandonedPath.empty()) {
        ShowMessage(Text(text::kLasFileNotAnswering) + L"\n\n" + summary.abandonedPath,
                    description_.pickCaption, PromptIcon::Warning);
    }
}

/// How many files were read again if not all were, and which of them did not answer.
void FileListPage::TellRereading(const AddingSummary& summary) {
    if (!summary.unread.empty()) {
        const std::size_t read = summary.offered - summary.unread.size();
        std::wstring text = FormatText(Text(text::kListStopped), {read, summary.offered});
        text += summary.abandonedPath.empty() ? std::wstring() : L": " + summary.abandonedPath;
        Progress().SetOutcome(text);
    }
}

/// `asked`: the files of the run, some of which an earlier one may have left.
void FileListPage::KeepUnread(const std::vector<std::wstring>& asked, const AddingSummary& summary) {
    const std::unordered_set<std::wstring_view> known(asked.begin(), asked.end());
    const std::size_t left = std::erase_if(unread_, [&](const auto& path) { return known.contains(path); });
    if (left > 0) {
        readBeside_ += summary.added;
    } else if (!summary.unread.empty()) {
        readBeside_ += summary.offered - summary.unread.size();
    }
    unread_.insert(unread_.end(), summary.unread.begin(), summary.unread.end());
    if (unread_.empty()) {
        readBeside_ = 0;
        Status().ClearStopped();
    } else {
        Status().SetStopped(readBeside_, readBeside_ + unread_.size());
    }
}

AddingSummary FileListPage::ReadNew(AddingRequest request) {
    const std::size_t first = RowCount();
    AddingSummary summary;
    try {
        summary = ReadFiles(std::move(request));
    } catch (...) {
        RecordAdded(first);
        throw;
    }
    RecordAdded(first);
    return summary;
}

AddingSummary FileListPage::ReadFiles(AddingRequest request) {
    const bool wasEmpty = RowCount() == 0;
    const DialogProgress::Run run(Progress());
    const auto appended = [this, isFirst = wasEmpty]() mutable {
        if (std::exchange(isFirst, false)) {
            FitColumns();
        }
    };
    AddingSummary summary;
    try {
        summary = AddRows(std::move(request), appended);
        DoLateWork();
    } catch (...) {
        RemoveAwaited();
        TellAwaited(0);
        FilesAdded(wasEmpty);
        throw;
    }
    FilesAdded(wasEmpty);
    return summary;
}

void FileListPage::TellAwaited(std::size_t files) {
    mustSkip_ = mustSkip_ && files > 0;  // of an earlier run
    Status().SetAwaited(files);
}

void FileListPage::DoLateWork() {
    const std::vector<std::function<void()>> work = LateWork();
    if (work.empty()) {
        return;
    }
    Progress().SetText(Text(text::kIdentifyingCrs));
    Progress().SetRange(0);
    RunInBackground(
        [work](const std::stop_token& stop) {
            for (auto step = work.begin(); step != work.end() && !stop.stop_requested(); ++step) {
                (*step)();
            }
        },
        Progress(), [] { return PollResult::GoOn; });
}

void FileListPage::FilesAdded(bool wasEmpty) {
    RowsChanged();
    if (wasEmpty && RowCount() > 0) {
        FitColumns();
        if (Grid().SelectedRows().empty()) {
            Grid().SelectRows({0});
        }
    }
    ShowDetails();
    EnableItems();
}

AddingReview FileListPage::Review() const {
    return ReviewOf(Rows(), {description_.passesUnreadable, DamagedNote(), unread_});
}

void FileListPage::ReadAgain() {
    Rereading rereading;
    try {
        const DialogProgress::Run run(Progress());
        rereading = RereadRows();
        DoLateWork();
        if (rereading.isNew) {
            FitColumns();  // what is new may need a wider column
        }
        Update();
    } catch (...) {
        TellAwaited(0);
        throw;
    }
    TellRereading(rereading.summary);
}

bool FileListPage::Accepts(const std::wstring& path) const {
    if (HasExtension(path, description_.extensions)) {
        return true;
    }
    const std::wstring file = StandInFor(path);
    return file == path ? FolderExists(path) : HasExtension(file, description_.extensions);
}

void FileListPage::dragEnterEvent(QDragEnterEvent* event) {
    RunGuarded(Services().prompts, L"OnDragEnter", [&] {
        const bool any = std::ranges::any_of(LocalPaths(*event->mimeData()),
                                             [this](const std::wstring& path) { return Accepts(path); });
        if (any && !Progress().IsRunning()) {
            event->acceptProposedAction();
        }
    });
}

void FileListPage::dropEvent(QDropEvent* event) {
    event->acceptProposedAction();
    RunGuarded(Services().prompts, L"OnDropFiles", [&] {
        // The program that they are dragged from waits until the event has been handled.
        QMetaObject::invokeMethod(
            this, [this, paths = LocalPaths(*event->mimeData())] { AddPaths(paths); }, Qt::QueuedConnection);
    });
}

}  // namespace orvex
