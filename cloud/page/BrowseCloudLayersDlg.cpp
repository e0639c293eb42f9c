#include "cloud/page/BrowseCloudLayersDlg.h"

#include <QHBoxLayout>
#include <QPushButton>
#include <QShortcut>
#include <QSplitter>
#include <QTableView>
#include <QVBoxLayout>
#include <algorithm>
#include <iterator>
#include <utility>

#include "cloud/page/CloudListPane.h"
#include "dialog/Images.h"
#include "dialog/WindowPlacement.h"
#include "dialog/grid/GridView.h"
#include "dialog/page/FilterLine.h"
#include "dialog/page/Mnemonics.h"
#include "settings/OptionStore.h"
#include "support/Format.h"
#include "support/HandlerGuard.h"
#include "support/HelpViewer.h"
#include "support/LDataError.h"
#include "support/QtText.h"

namespace orvex {
namespace {

constexpr QSize kMinimumSize{640, 320};
constexpr QSize kDefaultSize{1100, 640};
constexpr int kProjectsWidth = 235;
constexpr int kPauseMs = 120;
constexpr const wchar_t* kPlacementName = L"BrowseCloudLayersDlg";
constexpr const wchar_t* kSplitterName = L"BrowseCloudLayersDlgSplitter";

constexpr CloudListTexts kProjectTexts{.name = "projects",
                                       .label = text::kCloudBrowserProjects,
                                       .filter = text::kCloudProjectFilter,
                                       .one = text::kCloudOneProject,
                                       .several = text::kCloudProjectCount,
                                       .shownOf = text::kCloudProjectsShownOf,
                                       .reading = text::kCloudReadingProjects};
constexpr CloudListTexts kLayerTexts{.name = "layers",
                                     .label = text::kCloudBrowserLayers,
                                     .filter = text::kCloudLayerFilter,
                                     .one = text::kCloudOneLayer,
                                     .several = text::kCloudLayerCount,
                                     .shownOf = text::kCloudLayersShownOf,
                                     .reading = text::kCloudReadingLayers};

QPushButton* MakeButton(StringId text, const char* name) {
    auto* button = new QPushButton(ToQString(Text(text)));
    button->setObjectName(QLatin1String(name));
    return button;
}

}  // namespace

BrowseCloudLayersDlg::BrowseCloudLayersDlg(OrvexApplication* application, DialogServices& services,
                                           QWidget* parent, CloudLibrary library)
    : QDialog(parent, Qt::Dialog | Qt::WindowTitleHint | Qt::WindowSystemMenuHint |
                          Qt::WindowMaximizeButtonHint | Qt::WindowCloseButtonHint),
      application_(application),
      services_(services),
      library_(std::move(library)),
      projectRows_(std::make_unique<ListModel<CloudProjectRow>>(CloudProjectColumns())),
      layerRows_(std::make_unique<ListModel<CloudLayerRow>>(CloudLayerColumns())),
      texts_(std::make_unique<SharedTexts>()),
      projects_{L"PopulateFolders", text::kCloudNoProjects, &BrowseCloudLayersDlg::ReadProjects},
      layers_{L"PopulateLayers", text::kCloudNoLayers, &BrowseCloudLayersDlg::ReadLayers} {
    setObjectName(QStringLiteral("BrowseCloudLayersDlg"));
    if (!RunStep(L"InitializeColumns", [this] { InitializeColumns(); })) {
        return;
    }
    BuildWindow();
    Connect(projects_);
    Connect(layers_);
    ConnectGrids();
    Place();
    EnableItems();
}

BrowseCloudLayersDlg::~BrowseCloudLayersDlg() {
    // Both before either waits for its thread.
    for (const List* list : {&projects_, &layers_}) {
        if (list->request != nullptr) {
            list->request->Cancel();
        }
    }
    // Before the rows that they show.
    delete splitter_;
}

void BrowseCloudLayersDlg::InitializeColumns() {
    const std::vector<QIcon> images = MakeImageList();
    splitter_ = new QSplitter(Qt::Horizontal, this);
    projects_.pane = new CloudListPane(kProjectTexts, *projectRows_, services_.prompts, images);
    splitter_->addWidget(projects_.pane);
    layers_.pane = new CloudListPane(kLayerTexts, *layerRows_, services_.prompts, images);
    splitter_->addWidget(layers_.pane);
    projects_.pane->Grid().Table()->setSelectionMode(QAbstractItemView::SingleSelection);
    splitter_->setChildrenCollapsible(false);
    splitter_->setStretchFactor(0, 0);
    splitter_->setStretchFactor(1, 1);
    splitter_->setSizes({kProjectsWidth, kDefaultSize.width() - kProjectsWidth});
}

void BrowseCloudLayersDlg::BuildWindow() {
    setWindowTitle(ToQString(Text(text::kCloudBrowserTitle)));
    setWindowIcon(ApplicationIcon());
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(splitter_, 1);
    layout->addWidget(BuildButtons());
    for (List* list : {&projects_, &layers_}) {
        list->request = new CloudRequest(this);
    }
    layersLater_.setObjectName(QStringLiteral("layersLater"));
    layersLater_.setSingleShot(true);
    layersLater_.setInterval(kPauseMs);
    AssignMnemonics(*this);
}

QWidget* BrowseCloudLayersDlg::BuildButtons() {
    auto* row = new QWidget;
    auto* buttons = new QHBoxLayout(row);
    buttons->setContentsMargins(0, 0, 0, 0);
    ok_ = MakeButton(text::kCloudOk, "ok");
    ok_->setDefault(true);
    auto* cancel = MakeButton(text::kCloudCancel, "cancel");
    auto* help = MakeButton(text::kCloudHelp, "help");
    buttons->addStretch(1);
    for (QPushButton* button : {ok_, cancel, help}) {
        buttons->addWidget(button);
    }
    connect(ok_, &QPushButton::clicked, this, &BrowseCloudLayersDlg::accept);
    connect(cancel, &QPushButton::clicked, this, &BrowseCloudLayersDlg::reject);
    connect(help, &QPushButton::clicked, this, &BrowseCloudLayersDlg::OnBnClickedHelp);
    auto* f1 = new QShortcut(QKeySequence(Qt::Key_F1), this);
    connect(f1, &QShortcut::activated, this, &BrowseCloudLayersDlg::OnBnClickedHelp);
    return row;
}

void BrowseCloudLayersDlg::Connect(List& list) {
    UserPrompts& prompts = services_.prompts;
    connect(list.request, &CloudRequest::Answered, this,
            [this, &list](const CloudRequest::Answer& answer) { OnAnswer(list, answer); });
    connect(list.request, &CloudRequest::Waiting, this,
            Guarded(prompts, L"OnWaiting", [&list](const QString& text) {
                list.pane->ShowState(CloudListState::Reading, ToWide(text));
            }));
    connect(list.pane, &CloudListPane::StopRequested, this, Guarded(prompts, L"OnStop", [this, &list] {
                list.request->Cancel();
                if (&list == &layers_) {
                    layersLater_.stop();
                }
                list.pane->ShowState(CloudListState::Stopped);
            }));
    connect(list.pane, &CloudListPane::ContinueRequested, this,
            [this, &list] { RunStep(list.step, [&] { ContinueReading(list); }); });
}

void BrowseCloudLayersDlg::ConnectGrids() {
    UserPrompts& prompts = services_.prompts;
    GridView& projects = projects_.pane->Grid();
    GridView& layers = layers_.pane->Grid();
    connect(&projects, &GridView::CurrentRowChanged, this,
            Guarded(prompts, L"OnProject", [this](int row) { OnProject(row); }));
    connect(projectRows_.get(), &GridModel::FilterAboutToChange, this, [this] { isFiltering_ = true; });
    connect(projectRows_.get(), &GridModel::FilterChanged, this,
            Guarded(prompts, L"OnProjectsFiltered", [this] { OnProjectsFiltered(); }));
    connect(&projects, &GridView::ActivateRequested, &layers, qOverload<>(&QWidget::setFocus));
    connect(&layersLater_, &QTimer::timeout, this, [this] { PopulateLayers(); });
    connect(&layers, &GridView::ActivateRequested, this, &BrowseCloudLayersDlg::accept);
    connect(&layers, &GridView::SelectionChanged, this, [this] { EnableItems(); });
    connect(layers_.pane, &CloudListPane::DeselectRequested, this, [this] { OnDeselect(); });
    auto* find = new QShortcut(QKeySequence::Find, this);
    connect(find, &QShortcut::activated, this, Guarded(prompts, L"OnFind", [this] {
                const bool inProjects = projects_.pane->isAncestorOf(focusWidget());
                (inProjects ? projects_ : layers_).pane->Filter().Edit();
            }));
}

void BrowseCloudLayersDlg::Place() {
    setMinimumSize(kMinimumSize);
    resize(kDefaultSize);
    FitOntoScreen(*this);
    projects_.pane->Grid().setFocus();
    // Ctrl held while the dialog opens brings back its first size and place.
    if (!IsControlKeyHeld()) {
        RestoreWindowPlacement(*this, services_.options, kPlacementName);
        const auto sizes = services_.options.ReadPlacement(kSplitterName);
        splitter_->restoreState(QByteArray::fromStdString(sizes.value_or(std::string())));
    }
}

void BrowseCloudLayersDlg::SavePlacement() const {
    SaveWindowPlacement(*this, services_.options, kPlacementName);
    services_.options.WritePlacement(kSplitterName, splitter_->saveState().toStdString());
}

// The window is there when the first message comes.
void BrowseCloudLayersDlg::showEvent(QShowEvent* event) {
    QDialog::showEvent(event);
    if (!std::exchange(hasBegun_, true)) {
        QMetaObject::invokeMethod(this, &BrowseCloudLayersDlg::PopulateFolders, Qt::QueuedConnection);
    }
}

void BrowseCloudLayersDlg::KeepSelection() {
    for (const std::size_t record : SelectedRecords()) {
        kept_.Keep(*project_, layerRows_->Rows()[record]);
    }
}

/// Selects again what was selected when this project was shown before. The filter goes when it hides any of
/// that.
void BrowseCloudLayersDlg::SelectKept(std::size_t firstRecord) {
    std::vector<std::size_t> records;
    for (std::size_t record = firstRecord; record < layerRows_->Count(); ++record) {
        if (kept_.Take(*project_, layerRows_->Rows()[record])) {
            records.push_back(record);
        }
    }
    if (records.empty()) {
        return;
    }
    const auto rowOf = [this](std::size_t record) { return layerRows_->RowOfRecord(record); };
    if (std::ranges::any_of(records, [&](std::size_t record) { return rowOf(record) < 0; })) {
        layers_.pane->Filter().Clear();
        layerRows_->SetFilter({});
    }
    GridView& grid = layers_.pane->Grid();
    std::vector<int> rows = grid.SelectedRows();
    std::ranges::transform(records, std::back_inserter(rows), rowOf);
    std::ranges::sort(rows);
    grid.SelectRows(rows);
}

void BrowseCloudLayersDlg::OnDeselect() {
    kept_.Clear();
    EnableItems();
}

/// Of layers that can be added.
std::vector<std::size_t> BrowseCloudLayersDlg::SelectedRecords() const {
    std::vector<std::size_t> records;
    for (const int row : layers_.pane->Grid().SelectedRows()) {
        const std::size_t record = layerRows_->RecordOfRow(row);
        if (layerRows_->Rows()[record].CanBeAdded()) {
            records.push_back(record);
        }
    }
    return records;
}

void BrowseCloudLayersDlg::EnableItems() {
    RunStep(L"EnableItems", [this] {
        const std::size_t elsewhere = kept_.Count();
        const std::size_t selected = SelectedRecords().size() + elsewhere;
        ok_->setEnabled(selected > 0);
        layers_.pane->SetSelected(selected, elsewhere);
    });
}

int BrowseCloudLayersDlg::exec() {
    return ok_ == nullptr ? QDialog::Rejected : QDialog::exec();
}

void BrowseCloudLayersDlg::accept() {
    if (ok_->isEnabled() && RunStep(L"OnBnClickedOk", [this] { OnBnClickedOk(); })) {
        QDialog::accept();
    }
}

void BrowseCloudLayersDlg::OnBnClickedOk() {
    std::vector<CloudLayer> selected = kept_.All();
    for (const std::size_t record : SelectedRecords()) {
        selected.push_back(layerRows_->Rows()[record].Layer());
    }
    SavePlacement();
    selected_ = std::move(selected);
}

void BrowseCloudLayersDlg::reject() {
    RunStep(L"OnBnClickedCancel", [this] { SavePlacement(); });
    QDialog::reject();
}

/// Every way of closing ends here.
void BrowseCloudLayersDlg::done(int result) {
    layersLater_.stop();
    projects_.request->Cancel();
    layers_.request->Cancel();
    account_.reset();
    QDialog::done(result);
}

void BrowseCloudLayersDlg::OnBnClickedHelp() {
    RunStep(L"OnBnClickedHelp", [this] {
        if (!services_.help.Show(HelpTopic::CloudLas)) {
            throw LDataError(FormatText(Text(text::kHelpOpenFailed), {services_.help.ManualPath()}));
        }
    });
}

}  // namespace orvex
