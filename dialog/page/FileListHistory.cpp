// Undo and redo of what changes the list of a page.
#include <QAction>
#include <QMenu>
#include <algorithm>
#include <numeric>
#include <unordered_map>
#include <unordered_set>
#include <utility>

#include "dialog/DialogProgress.h"
#include "dialog/grid/GridView.h"
#include "dialog/page/FileListPage.h"
#include "support/Format.h"
#include "support/HandlerGuard.h"
#include "support/QtText.h"

namespace orvex {

void FileListPage::MakeHistoryActions() {
    undo_ = AddHistoryAction(text::kUndo, {QKeySequence(Qt::CTRL | Qt::Key_Z)});
    redo_ = AddHistoryAction(
        text::kRedo, {QKeySequence(Qt::CTRL | Qt::Key_Y), QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_Z)});
    connect(undo_, &QAction::triggered, this, Guarded(Services().prompts, L"OnUndo", [this] { OnUndo(); }));
    connect(redo_, &QAction::triggered, this, Guarded(Services().prompts, L"OnRedo", [this] { OnRedo(); }));
    connect(&Progress(), &DialogProgress::RunningChanged, this, &FileListPage::EnableHistory);
    QMenu* const menu = Grid().ContextMenu();
    QAction* const first = menu->actions().value(0);
    menu->insertActions(first, {undo_, redo_});
    menu->insertSeparator(first);
    EnableHistory();
}

QAction* FileListPage::AddHistoryAction(StringId caption, const QList<QKeySequence>& keys) {
    auto* action = new QAction(ToQString(Text(caption)), this);
    action->setShortcuts(keys);
    action->setShortcutContext(Qt::WindowShortcut);  // an input field with the focus takes them before
    addAction(action);
    return action;
}

void FileListPage::EnableHistory() {
    undo_->setEnabled(history_.CanUndo() && !Progress().IsRunning());
    redo_->setEnabled(history_.CanRedo() && !Progress().IsRunning());
}

void FileListPage::OnUndo() {
    if (history_.CanUndo() && !Progress().IsRunning()) {
        const ListChange& change = history_.Undo();
        Apply(change, change.kind == ListChange::Kind::Removed, text::kUndone);
    }
}

void FileListPage::OnRedo() {
    if (history_.CanRedo() && !Progress().IsRunning()) {
        const ListChange& change = history_.Redo();
        Apply(change, change.kind == ListChange::Kind::Added, text::kRedone);
    }
}

void FileListPage::Record(ListChange::Kind kind, std::span<const std::size_t> records) {
    ListChange change{kind, {}};
    change.entries.reserve(records.size());
    for (const std::size_t record : records) {
        change.entries.push_back({record, PathOf(record)});
    }
    std::ranges::sort(change.entries, {}, &ListChange::Entry::place);
    history_.Record(std::move(change));
    EnableHistory();
}

void FileListPage::RecordAdded(std::size_t first) {
    std::vector<std::size_t> records(RowCount() - first);
    std::iota(records.begin(), records.end(), first);
    Record(ListChange::Kind::Added, records);
}

void FileListPage::BeforeRemoval(std::span<const std::size_t> records) {
    Record(ListChange::Kind::Removed, records);
}

void FileListPage::Cleared() {
    unread_.clear();
    KeepUnread({}, {});
}

void FileListPage::Release() {
    ListPage::Release();
    history_.Clear();
    EnableHistory();
}

void FileListPage::Apply(const ListChange& change, bool adds, StringId outcome) {
    adds ? Restore(change) : TakeOut(change);
    EnableHistory();
    Progress().SetOutcome(FormatText(Text(outcome), {ListChangeText(change)}));
}

/// Reads the files again. Escape leaves the rest to be read later.
void FileListPage::Restore(const ListChange& change) {
    std::vector<std::wstring> paths;
    std::unordered_map<std::wstring, std::size_t> placeOf;
    for (const auto& [place, path] : change.entries) {
        paths.push_back(path);
        placeOf.emplace(path, place);
    }
    const std::size_t before = RowCount();
    AddingRequest request = RequestFor(paths);
    request.asksAtMany = false;
    const AddingSummary summary = ReadFiles(std::move(request));
    KeepUnread(paths, summary);
    std::vector<std::size_t> places;  // of those that were read, in the order of the change
    for (std::size_t record = before; record < RowCount(); ++record) {
        places.push_back(placeOf.at(PathOf(record)));
    }
    MoveRows(NewIndices(before, places));
    Update();
}

void FileListPage::TakeOut(const ListChange& change) {
    std::unordered_set<std::wstring> paths;
    for (const ListChange::Entry& entry : change.entries) {
        paths.insert(entry.path);
    }
    std::vector<std::size_t> records;
    for (std::size_t record = 0; record < RowCount(); ++record) {
        if (paths.contains(PathOf(record))) {
            records.push_back(record);
        }
    }
    RemoveRows(std::move(records));
    Update();
}

}  // namespace orvex
