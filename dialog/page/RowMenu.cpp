#include "dialog/page/RowMenu.h"

#include <QAction>
#include <QClipboard>
#include <QGuiApplication>
#include <QKeySequence>
#include <QMenu>
#include <fstream>

#include "dialog/DialogProgress.h"
#include "dialog/grid/GridView.h"
#include "dialog/page/ListModel.h"
#include "dialog/page/RowFinder.h"
#include "support/FilePickers.h"
#include "support/Format.h"
#include "support/HandlerGuard.h"
#include "support/QtText.h"
#include "support/TemporaryFile.h"
#include "support/UserPrompts.h"

namespace orvex {
namespace {

constexpr std::size_t kLongestEntry = 80;  // of a menu, in characters

/// A text as a menu's entry, without mnemonics.
QString EntryText(const std::wstring& text) {
    const bool isLong = text.size() > kLongestEntry;
    return ToQString(isLong ? text.substr(0, kLongestEntry) + L"\u2026" : text)
        .replace(QLatin1Char('&'), QStringLiteral("&&"));
}

}  // namespace

RowMenu::RowMenu(GridView& grid, RowFinder& finder, const DialogServices& services, DialogProgress& progress)
    : QObject(&grid), grid_(grid), finder_(finder), services_(services), progress_(progress) {}

void RowMenu::Start(const ListRows& rows, const char* kind) {
    rows_ = &rows;
    kind_ = kind;
    AddFileActions();
    AddSelectActions();
    connect(grid_.ContextMenu(), &QMenu::aboutToShow, this,
            Guarded(services_.prompts, L"OnContextMenu", [this] { Enable(); }));
}

QAction* RowMenu::Add(QMenu& menu, const char* name, StringId text, const wchar_t* handler,
                      std::function<void()> run, QAction* before) {
    auto* action = new QAction(ToQString(Text(text)), this);
    action->setObjectName(QLatin1String(name));
    menu.insertAction(before, action);
    connect(action, &QAction::triggered, this, Guarded(services_.prompts, handler, std::move(run)));
    return action;
}

void RowMenu::AddFileActions() {
    QMenu& menu = *grid_.ContextMenu();
    auto* end = menu.findChild<QAction*>(QStringLiteral("endOfCopying"));
    QAction* copy = Add(
        menu, "copyPath", text::kListCopyPath, L"OnCopyPath", [this] { CopyPaths(); }, end);
    copy->setShortcut(QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_C));
    copy->setShortcutContext(Qt::WidgetWithChildrenShortcut);
    grid_.addAction(copy);
    QAction* show = Add(
        menu, "showInFolder", text::kListShowInFolder, L"OnShowInFolder", [this] { ShowInFolder(); }, end);
    QAction* save = Add(
        menu, "exportList", text::kListExport, L"OnExportList", [this] { ExportList(); }, end);
    needRow_ = {show};
    needRows_ = {save};
}

void RowMenu::AddSelectActions() {
    struct Choice {
        const char* name;
        StringId text;
        Likeness likeness;
    };
    constexpr Choice kChoices[] = {{"sameCrs", text::kListSelectSameCrs, Likeness::Crs},
                                   {"sameLayer", text::kListSelectSameLayer, Likeness::Layer},
                                   {"sameFolder", text::kListSelectSameFolder, Likeness::Folder}};
    QMenu& menu = *grid_.ContextMenu()->findChild<QMenu*>(QStringLiteral("select"));
    needRows_.push_back(
        Add(menu, "invert", text::kListSelectInvert, L"OnInvertSelection", [this] { Invert(); }));
    menu.addSeparator();
    for (const Choice& choice : kChoices) {
        needRow_.push_back(Add(menu, choice.name, choice.text, L"OnSelectLike",
                               [this, likeness = choice.likeness] { SelectLike(likeness); }));
    }
    findings_ = menu.addMenu(ToQString(Text(text::kListSelectFinding)));
    findings_->setObjectName(QStringLiteral("withFinding"));
}

void RowMenu::Enable() {
    for (QAction* action : needRow_) {
        action->setEnabled(Record().has_value());
    }
    for (QAction* action : needRows_) {
        action->setEnabled(rows_->rowCount() > 0);
    }
    FillFindings();
}

void RowMenu::FillFindings() {
    findings_->clear();
    const auto record = Record();
    for (const Finding& finding : record ? rows_->Findings(*record) : std::vector<Finding>()) {
        QAction* action = findings_->addAction(EntryText(finding.text));
        action->setObjectName(QLatin1String(finding.code));
        connect(action, &QAction::triggered, this,
                Guarded(services_.prompts, L"OnSelectFinding",
                        [this, code = finding.code] { finder_.Select(RecordsWithFinding(*rows_, code)); }));
    }
    findings_->setEnabled(!findings_->isEmpty());
}

std::optional<std::size_t> RowMenu::Record() const {
    const int row = grid_.CurrentRow();
    return row < 0 ? std::nullopt : std::optional(rows_->RecordOfRow(row));
}

std::vector<std::size_t> RowMenu::Selected() const {
    std::vector<std::size_t> records;
    for (const int row : grid_.SelectedRows()) {
        records.push_back(rows_->RecordOfRow(row));
    }
    return records;
}

void RowMenu::CopyPaths() const {
    QString paths;
    for (const std::size_t record : Selected()) {
        paths += (paths.isEmpty() ? QString() : QStringLiteral("\n")) + ToQString(rows_->Traits(record).path);
    }
    if (!paths.isEmpty()) {
        QGuiApplication::clipboard()->setText(paths);
    }
}

void RowMenu::ShowInFolder() const {
    const auto record = Record();
    if (!record) {
        return;
    }
    const std::wstring path = rows_->Traits(*record).path;
    const std::wstring folder = FolderOf(path);
    if (!FolderExists(folder)) {
        Warn(FormatText(Text(text::kListFolderGone), {folder}));
    } else if (!services_.pickers.ShowInFolder(path)) {
        Warn(FormatText(Text(text::kListFolderNotShown), {folder}));
    }
}

void RowMenu::Warn(std::wstring text) const {
    services_.prompts.Show(
        {std::move(text), Text(text::kAddFilesTitle), PromptIcon::Warning, PromptButtons::Ok});
}

void RowMenu::ExportList() {
    std::vector<std::size_t> records;
    for (int row = 0; row < rows_->rowCount(); ++row) {
        records.push_back(rows_->RecordOfRow(row));
    }
    if (records.empty()) {
        return;
    }
    const std::wstring folder = FolderOf(rows_->Traits(records.front()).path);
    const bool isUrl = folder.find(L"://") != std::wstring::npos;
    const std::wstring name = FromUtf8(kind_) + L".csv";
    const auto path = services_.pickers.PickSaveFile({.title = Text(text::kListExportTitle),
                                                      .path = isUrl ? name : NativePath(folder + L"/" + name),
                                                      .filter = {Text(text::kListExportFilter), L"*.csv"},
                                                      .suffix = L"csv"});
    if (!path) {
        return;
    }
    const std::optional<SystemError> error = WriteList(*path, records);
    if (!error) {
        progress_.SetOutcome(Text(text::kListExportStopped));
    } else if (*error == 0) {
        progress_.SetOutcome(FormatText(Text(text::kListExported), {records.size(), *path}));
    } else {
        Warn(FormatText(Text(text::kListExportFailed), {*path, SystemErrorText(*error)}));
    }
}

std::optional<SystemError> RowMenu::WriteList(const std::wstring& path,
                                              const std::vector<std::size_t>& records) {
    const DialogProgress::Run run(progress_);
    progress_.SetText(Text(text::kListExportProgress));
    TemporaryFile temporary(path);
    ForgetStreamError();
    std::ofstream out(ToPath(temporary.Path()), std::ios::binary);
    if (!rows_->WriteCsv(out, records, kind_, progress_)) {
        return std::nullopt;
    }
    out.close();
    return out ? temporary.Commit() : LastStreamError();
}

void RowMenu::Invert() {
    const std::vector<int> selected = grid_.SelectedRows();
    std::vector<int> others;
    auto next = selected.begin();
    for (int row = 0; row < rows_->rowCount(); ++row) {
        if (next != selected.end() && *next == row) {
            ++next;
        } else {
            others.push_back(row);
        }
    }
    grid_.SelectRows(others);
}

void RowMenu::SelectLike(Likeness likeness) {
    if (const auto record = Record()) {
        finder_.Select(RecordsLike(*rows_, *record, likeness));
    }
}

}  // namespace orvex
