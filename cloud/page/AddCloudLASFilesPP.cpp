#include "cloud/page/AddCloudLASFilesPP.h"

#include <QAction>
#include <QMenu>
#include <QPushButton>
#include <QTableView>
#include <QTimer>
#include <algorithm>
#include <iterator>
#include <string_view>
#include <utility>

#include "cloud/CloudColumns.h"
#include "cloud/page/CloudDetails.h"
#include "cloud/page/RemoteRun.h"
#include "dialog/DialogProgress.h"
#include "dialog/grid/GridView.h"
#include "dialog/page/ControlWidget.h"
#include "dialog/page/ListHistory.h"
#include "support/Format.h"
#include "support/HandlerGuard.h"

namespace orvex {
namespace {

constexpr int kLookInside = 43550;
constexpr std::size_t kMostRemovals = 20;  // that can be undone
constexpr const wchar_t* kAddTooltip =
    L"Add an Orvex Cloud Layer(s) by browsing Orvex Cloud LAS Layers/Packages or by providing the Pre-signed "
    L"S3 URL of the layer to be added.";

ListPageDescription Describe() {
    using enum DetailsTab::Kind;
    ListPageDescription page;
    page.gridId = 357;
    page.emptyText = text::kCloudEmptyGrid;
    page.remove.id = 352;
    page.clear.id = 353;
    page.selectAll.id = 355;
    page.help.id = 356;
    page.helpTopic = HelpTopic::CloudLas;
    page.splitterName = "cloudSplitter";
    page.paneStateName = L"AddCloudLASFilesDetails";
    page.columnStateName = L"AddCloudLASFilesColumns";
    page.kind = "cloud";
    page.detailsTabs = {{"cloudOverview", text::kDetailsOverviewTab, Html},
                        {"cloudCrs", text::kDetailsCrsTab, Html},
                        {"cloudRecords", text::kDetailsRecordsTab, PlainText}};
    page.nothingSelected = text::kCloudNoSelection;
    return page;
}

/// Everything about the page but its columns.
const ListPageDescription& CloudPage() {
    static const ListPageDescription page = Describe();
    return page;
}

/// The row of a URL; rows may have gone since it had the index `expected`. Null: this one has.
CloudRow* RowOfUrl(std::vector<CloudRow>& rows, std::size_t expected, const std::wstring& url) {
    if (expected < rows.size() && rows[expected].url == url) {
        return &rows[expected];
    }
    const auto found = std::ranges::find(rows, url, &CloudRow::url);
    return found == rows.end() ? nullptr : &*found;
}

}  // namespace

AddCloudLASFilesPP::AddCloudLASFilesPP(const PageContext& context, QWidget* parent)
    : AddCloudLASFilesPP(context, CloudSources(), parent) {}

AddCloudLASFilesPP::AddCloudLASFilesPP(const PageContext& context, CloudSources sources, QWidget* parent)
    : ListPage(context, CloudPage(), parent),
      sources_(std::move(sources)),
      model_(new ListModel<CloudRow>(CloudColumns(), this)),
      expiry_(new QTimer(this)) {
    FillSources();
    setAcceptDrops(false);
    setWindowIcon(context.images[kImageCloud]);
    expiry_->setSingleShot(true);
    expiry_->setObjectName(QStringLiteral("expiry"));
    MakeRowActions();
    Start(*model_);
    auto* add = findChild<QPushButton*>(ControlName(kAddButton));
    add->setToolTip(QString::fromWCharArray(kAddTooltip));
    add->setWhatsThis(add->toolTip());
    Grid().Table()->setAccessibleName(ToQString(Text(text::kCloudTab)));
    MakeAddMenu();
    AdaptRowMenu();
    UserPrompts& prompts = Services().prompts;
    connect(expiry_, &QTimer::timeout, this, Guarded(prompts, L"OnExpiry", [this] { Update(); }));
    // The first row of a name goes into the record, in the order of the grid.
    connect(model_, &GridModel::SortChanged, this, Guarded(prompts, L"OnSort", [this] { RowsChanged(); }));
    const auto enable = Guarded(prompts, L"EnableItems", [this] { EnableRowActions(); });
    connect(&Grid(), &GridView::SelectionChanged, this, enable);
    connect(&Progress(), &DialogProgress::RunningChanged, this, enable);
    EnableRowActions();
}

std::vector<ListPage::PageButton> AddCloudLASFilesPP::Buttons() {
    std::vector<PageButton> buttons{
        {{kAddButton, text::kCloudAdd, {}, true}, ButtonImage::AddFiles, Usable::WhenIdle, L"OnAdd", [this] {
             OnAdd();
         }}};
    std::ranges::move(ListPage::Buttons(), std::back_inserter(buttons));
    buttons.insert(buttons.end() - 1, {{kLookInside, text::kCloudLookInside, text::kCloudLookInsideTooltip},
                                       ButtonImage::LookInside,
                                       Usable::WithRows,
                                       L"OnLookInside",
                                       [this] { OnLookInside(); }});
    return buttons;
}

void AddCloudLASFilesPP::MakeRowActions() {
    undo_ = AddRowAction("undo", text::kUndo, QKeySequence(Qt::CTRL | Qt::Key_Z), L"OnUndo",
                         &AddCloudLASFilesPP::OnUndo);
    undo_->setShortcutContext(Qt::WindowShortcut);  // the grid has no focus when its rows have gone
    lookInside_ = AddRowAction("lookInside", text::kCloudLookInside, {}, L"OnLookInside",
                               &AddCloudLASFilesPP::OnLookInside);
    rename_ = AddRowAction("rename", text::kCloudRename, QKeySequence(Qt::Key_F2), L"OnRename",
                           &AddCloudLASFilesPP::OnRename);
    QMenu* const menu = Grid().ContextMenu();
    QAction* const first = menu->actions().value(0);
    menu->insertActions(first, {undo_, lookInside_, rename_});
    menu->insertSeparator(first);
}

QAction* AddCloudLASFilesPP::AddRowAction(const char* name, StringId caption, const QKeySequence& key,
                                          const wchar_t* handler, void (AddCloudLASFilesPP::*run)()) {
    auto* action = new QAction(ToQString(Text(caption)), this);
    action->setObjectName(QLatin1String(name));
    action->setShortcut(key);
    action->setShortcutContext(Qt::WidgetWithChildrenShortcut);
    Grid().addAction(action);
    connect(action, &QAction::triggered, this,
            Guarded(Services().prompts, handler, [this, run] { (this->*run)(); }));
    return action;
}

/// What the menu has for files.
void AddCloudLASFilesPP::AdaptRowMenu() {
    for (const char* name : {"showInFolder", "sameLayer"}) {
        Grid().findChild<QAction*>(QLatin1String(name))->setVisible(false);
    }
    Grid().findChild<QAction*>(QStringLiteral("copyPath"))->setText(ToQString(Text(text::kCloudCopyUrl)));
}

void AddCloudLASFilesPP::EnableRowActions() {
    const bool idle = !Progress().IsRunning();
    undo_->setEnabled(idle && !removed_.empty());
    lookInside_->setEnabled(idle && model_->Count() > 0);
    rename_->setEnabled(idle && Grid().SelectedRows().size() == 1);
}

void AddCloudLASFilesPP::OnRename() {
    const std::vector<std::size_t> records = SelectedRecords();
    if (records.size() != 1 || Progress().IsRunning()) {
        return;
    }
    const auto typed = sources_.askName(model_->Rows()[records.front()].name);
    if (typed && !typed->empty() && records.front() < model_->Count()) {
        constexpr std::string_view kChanged[] = {"name"};
        model_->Change([&](std::vector<CloudRow>& rows) { rows[records.front()].name = *typed; }, kChanged);
        Update();
    }
}

/// The selected ones; without a selection those of which nothing is known, or all.
std::vector<std::size_t> AddCloudLASFilesPP::RecordsToInspect() const {
    std::vector<std::size_t> records = SelectedRecords();
    if (!records.empty()) {
        return records;
    }
    records = model_->RecordsInOrder();
    const auto isKnown = [this](std::size_t record) { return model_->Rows()[record].remote != nullptr; };
    if (!std::ranges::all_of(records, isKnown)) {
        std::erase_if(records, isKnown);
    }
    return records;
}

void AddCloudLASFilesPP::OnLookInside() {
    if (Progress().IsRunning()) {
        return;
    }
    std::vector<std::size_t> records = RecordsToInspect();
    std::erase_if(records, [this](std::size_t record) { return model_->Rows()[record].url.empty(); });
    std::vector<std::wstring> urls;
    urls.reserve(records.size());
    for (const std::size_t record : records) {
        urls.push_back(model_->Rows()[record].url);
    }
    std::size_t done = 0;
    std::uint64_t received = 0;
    const auto take = [&](const std::vector<Inspected>& batch) {
        model_->Change([&](std::vector<CloudRow>& rows) {
            for (const auto& [index, remote] : batch) {
                ++done;
                received += remote->transferred;
                if (CloudRow* row = RowOfUrl(rows, records[index], urls[index])) {
                    TakeRemote(*row, remote);
                }
            }
        });
        Update();
    };
    {
        const DialogProgress::Run run(Progress());
        InspectRemotes(urls, sources_.inspect, Progress(), take);
    }
    Progress().SetOutcome(FormatText(Text(text::kCloudLookedInto),
                                     {done, urls.size(), GroupedNumber((received + 500) / 1000)}));
}

void AddCloudLASFilesPP::BeforeRemoval(std::span<const std::size_t> records) {
    Removed removed{{records.begin(), records.end()}, {}};
    std::ranges::sort(removed.places);
    for (const std::size_t record : removed.places) {
        removed.rows.push_back(model_->Rows()[record]);
    }
    if (!removed.rows.empty()) {
        removed_.push_back(std::move(removed));
    }
    if (removed_.size() > kMostRemovals) {
        removed_.erase(removed_.begin());
    }
}

void AddCloudLASFilesPP::OnUndo() {
    if (removed_.empty() || Progress().IsRunning()) {
        return;
    }
    Removed last = std::move(removed_.back());
    removed_.pop_back();
    const std::size_t before = model_->Count();
    model_->Append(std::move(last.rows));
    model_->Permute(NewIndices(before, last.places));
    Update();
    SelectRecords(last.places);
    Progress().SetOutcome(FormatText(Text(text::kCloudLayersRestored), {last.places.size()}));
}

void AddCloudLASFilesPP::Release() {
    ListPage::Release();
    removed_.clear();
    EnableRowActions();
}

void AddCloudLASFilesPP::RowsChanged() {
    constexpr std::string_view kChanged[] = {"name", "state"};  // the icon stands beside the name
    const std::int64_t now = sources_.now();
    std::optional<std::int64_t> next;
    std::vector<std::size_t> order;
    // A list sorted by state may get another order, and with it other names that are taken; those do not
    // change it again.
    while (order != model_->RecordsInOrder()) {
        order = model_->RecordsInOrder();
        model_->Change([&](std::vector<CloudRow>& rows) { next = ApplyCloudRules(rows, order, now); },
                       kChanged);
    }
    expiry_->stop();
    if (next) {
        constexpr std::int64_t kDayMs = 24LL * 60 * 60 * 1000;
        expiry_->start(static_cast<int>(std::min(*next - now, kDayMs)));
    }
    EnableRowActions();
}

DetailsContent AddCloudLASFilesPP::Details(std::span<const std::size_t> records) const {
    return CloudDetailsContent(model_->Rows(), records, DetailsPane().CaptionColour());
}

bool AddCloudLASFilesPP::Store() {
    for (const std::size_t record : model_->RecordsInOrder()) {
        StoreCloudRow(model_->Rows()[record], Params());
    }
    return true;
}

}  // namespace orvex
