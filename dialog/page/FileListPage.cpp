#include "dialog/page/FileListPage.h"

#include <QDragEnterEvent>
#include <QDropEvent>
#include <QMimeData>
#include <QUrl>
#include <algorithm>
#include <utility>

#include "dialog/DialogProgress.h"
#include "dialog/grid/GridView.h"
#include "dialog/page/BackgroundRun.h"
#include "support/DataKinds.h"
#include "support/Files.h"
#include "support/Format.h"
#include "support/HandlerGuard.h"
#include "support/QtText.h"

namespace orvex {
namespace {

std::vector<std::wstring> PathsOf(const QMimeData& data) {
    std::vector<std::wstring> paths;
    for (const QUrl& url : data.urls()) {
        paths.push_back(ToWidePath(url.toLocalFile()));
    }
    return paths;
}

}  // namespace

FileListPage::FileListPage(const PageContext& context, const FileListPageDescription& description,
                           QWidget* parent)
    : ListPage(context, description, parent), description_(description) {
    setAcceptDrops(true);
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
                                       L"OnRefresh", [this] { OnRefresh(); }});
    return buttons;
}

void FileListPage::OnAddFiles() {
    // The system's dialog takes 255 characters of a title.
    constexpr std::size_t kLongestTitle = 255;
    OpenFilesRequest request;
    request.title = Text(description_.pickTitle).substr(0, kLongestTitle);
    request.initialFolder = description_.startsInInitialFolder ? Params().initialFolder : std::wstring();
    request.filters = description_.filters;
    const PickedFiles picked = Services().pickers.PickFiles(request);
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

void FileListPage::OnAddFolder() {
    const auto folder = Services().pickers.PickFolder(Text(description_.folderTitle));
    if (!folder.has_value()) {
        return;
    }
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

void FileListPage::AddFound(std::vector<std::wstring> paths, bool recursive) {
    ScanRequest request{std::move(paths), description_.extensions, recursive, description_.folderExtensions};
    ScanResult found;
    {
        const DialogProgress::Run run(Progress());
        found = ScanPathsWithProgress(std::move(request), Text(description_.scanProgress), Progress());
    }
    if (const std::optional<Prompt> prompt = ScanPrompt(found, description_.scanTexts)) {
        Services().prompts.Show(*prompt);
    }
    if (!found.stopped && !found.files.empty()) {
        AddFiles(std::move(found.files));
    }
}

void FileListPage::AddFiles(std::vector<std::wstring> paths) {
    const bool wasEmpty = RowCount() == 0;
    const DialogProgress::Run run(Progress());
    const auto appended = [this, isFirst = wasEmpty]() mutable {
        if (std::exchange(isFirst, false)) {
            FitColumns();
        }
    };
    AddingSummary summary;
    try {
        summary = AddRows(RequestFor(std::move(paths)), appended);
    } catch (...) {
        FilesAdded(wasEmpty);
        throw;
    }
    DoLateWork();
    FilesAdded(wasEmpty);
    Progress().SetOutcome(FormatText(Text(text::kFilesAdded), {summary.added, summary.skipped}));
    if (!summary.abandonedPath.empty()) {
        ShowMessage(Text(text::kLasFileNotAnswering) + L"\n\n" + summary.abandonedPath,
                    description_.pickCaption, PromptIcon::Warning);
    }
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

void FileListPage::OnRefresh() {
    const DialogProgress::Run run(Progress());
    const bool isNew = RereadRows();
    DoLateWork();
    if (isNew) {
        FitColumns();  // what is new may need a wider column
    }
    Update();
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
        const bool any = std::ranges::any_of(PathsOf(*event->mimeData()),
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
            this, [this, paths = PathsOf(*event->mimeData())] { AddPaths(paths); }, Qt::QueuedConnection);
    });
}

}  // namespace orvex
