// How the LAS page is built; what it does is in AddLASFilesPP.cpp.
#include <QLabel>
#include <QPushButton>
#include <QScrollArea>
#include <QScrollBar>
#include <QShortcut>
#include <QSplitter>
#include <QTableView>
#include <QToolButton>
#include <QVBoxLayout>
#include <QWhatsThis>

#include "dialog/DialogProgress.h"
#include "dialog/HandlerGuard.h"
#include "dialog/Images.h"
#include "dialog/Mnemonics.h"
#include "dialog/grid/GridView.h"
#include "las/AddLASFilesModel.h"
#include "las/AddLASFilesPP.h"
#include "las/LasControlWidget.h"
#include "las/LasDetailsPanel.h"
#include "las/LasOptionsPanel.h"
#include "las/LasOptionsWidget.h"
#include "las/LasPageControls.h"
#include "las/LasPageTasks.h"
#include "las/LasPaneState.h"
#include "support/QtText.h"

namespace orvex {

using namespace las_control;

namespace {

constexpr int kUsualPaneHeight = 250;
// Below this height of the page the grid needs all that the options leave.
constexpr int kRoomForPane = 440;

QPushButton* MakeButton(int id, StringId caption, StringId tooltip, ButtonImage image) {
    auto* button = MakeControl<QPushButton>(id, caption, tooltip);
    button->setIcon(ButtonIcon(image));
    button->setAutoDefault(false);
    return button;
}

QToolButton* MakeIconButton(int id, StringId tooltip, ButtonImage image) {
    auto* button = MakeControl<QToolButton>(id, {}, tooltip);
    button->setIcon(ButtonIcon(image));
    button->setAccessibleName(button->toolTip());
    button->setFocusPolicy(Qt::StrongFocus);
    return button;
}

}  // namespace

AddLASFilesPP::AddLASFilesPP(const PageContext& context, QWidget* parent)
    : AddFilesPage(parent),
      services_(context.services),
      params_(*context.params),
      progress_(context.progress),
      store_(*context.params),
      adder_(MakeLasFileAdder()),
      model_(new AddLASFilesModel(this)),
      grid_(new GridView),
      optionGroups_(new LasOptionsWidget),
      details_(new LasDetailsPanel(context.images)),
      splitter_(new QSplitter(Qt::Vertical)) {
    setAcceptDrops(true);
    BuildLayout();
    grid_->SetIcons(context.images);
    RunGuarded(services_.prompts, L"InitializeColumns", [this] { InitializeColumns(); });
    AssignMnemonics(*this);
    ReadOptions();
    OnDetailColumns();
    ConnectButtons();
    ConnectGroups();
    RestorePane();
    EnableItems();
}

void AddLASFilesPP::BuildLayout() {
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(8, 8, 8, 8);
    layout->setSpacing(6);
    layout->addWidget(MakeButtonRow());
    MakeSplitter();
    layout->addWidget(splitter_, 1);
    optionsPanel_ = new LasOptionsPanel(optionGroups_);
    layout->addWidget(optionsPanel_);
}

QWidget* AddLASFilesPP::MakeButtonRow() {
    auto* row = new QWidget;
    auto* layout = new QHBoxLayout(row);
    layout->setContentsMargins(0, 0, 0, 0);
    auto* caption = MakeControl<QLabel>(kFilesCaption, 13466_lsid);
    caption->setBuddy(grid_->Table());  // a label gives the focus to none that refuses it itself
    layout->addWidget(caption);
    layout->addStretch();
    layout->addWidget(MakeButton(kAddFiles, 13462_lsid, 13483_lsid, ButtonImage::AddFiles));
    layout->addWidget(MakeButton(kAddFolder, 13463_lsid, 41015_lsid, ButtonImage::AddFolder));
    layout->addWidget(MakeButton(kRemove, 13464_lsid, 13484_lsid, ButtonImage::Remove));
    layout->addWidget(MakeButton(kClear, 13465_lsid, 13485_lsid, ButtonImage::Clear));
    detailColumns_ = MakeControl<QPushButton>(kDetailColumns, {}, 13478_lsid);
    detailColumns_->setCheckable(true);
    detailColumns_->setAutoDefault(false);
    detailColumns_->setAccessibleName(detailColumns_->toolTip());
    detailColumns_->setFixedWidth(detailColumns_->fontMetrics().horizontalAdvance(QStringLiteral(">>")) + 24);
    layout->addWidget(detailColumns_);
    layout->addWidget(MakeIconButton(kRefresh, 40675_lsid, ButtonImage::AllRows));
    layout->addWidget(MakeIconButton(kHelp, 13557_lsid, ButtonImage::Help));
    return row;
}

void AddLASFilesPP::MakeSplitter() {
    grid_->setObjectName(ControlName(kGrid));
    grid_->setMinimumHeight(90);
    splitter_->setObjectName(QStringLiteral("lasSplitter"));
    splitter_->setChildrenCollapsible(false);
    splitter_->addWidget(grid_);
    splitter_->addWidget(details_);
    splitter_->setStretchFactor(0, 1);
    splitter_->setStretchFactor(1, 0);
}

void AddLASFilesPP::InitializeColumns() {
    grid_->SetEmptyText(ToQString(Text(40674_lsid)));
    grid_->SetModel(model_);
}

void AddLASFilesPP::ConnectButtons() {
    UserPrompts& prompts = services_.prompts;
    const auto click = [&](int id, const wchar_t* name, void (AddLASFilesPP::*handler)()) {
        connect(findChild<QAbstractButton*>(ControlName(id)), &QAbstractButton::clicked, this,
                Guarded(prompts, name, [this, handler] { (this->*handler)(); }));
    };
    click(kAddFiles, L"OnAddFiles", &AddLASFilesPP::OnAddFiles);
    click(kAddFolder, L"OnAddFolder", &AddLASFilesPP::OnAddFolder);
    click(kRemove, L"OnRemove", &AddLASFilesPP::OnRemove);
    click(kClear, L"OnClear", &AddLASFilesPP::OnClear);
    click(kDetailColumns, L"OnDetailColumns", &AddLASFilesPP::OnDetailColumns);
    click(kRefresh, L"OnRefresh", &AddLASFilesPP::OnRefresh);
    connect(findChild<QAbstractButton*>(ControlName(kHelp)), &QAbstractButton::clicked, this,
            [] { QWhatsThis::enterWhatsThisMode(); });
    auto* help = new QShortcut(QKeySequence(Qt::Key_F1), this);
    help->setContext(Qt::WindowShortcut);  // OK has the focus mostly; a page that is hidden hears nothing
    connect(help, &QShortcut::activated, this, Guarded(prompts, L"OnHelp", [this] { OnHelp(); }));
    connect(grid_, &GridView::RemoveRequested, this, Guarded(prompts, L"OnRemove", [this] { OnRemove(); }));
}

void AddLASFilesPP::ConnectGroups() {
    UserPrompts& prompts = services_.prompts;
    const auto enable = Guarded(prompts, L"EnableItems", [this] { EnableItems(); });
    const auto details = Guarded(prompts, L"ShowDetails", [this] { ShowDetails(); });
    connect(optionGroups_, &LasOptionsWidget::LayerRulesChanged, this,
            Guarded(prompts, L"OnLayerOptions", [this] { AssignLayers(); }));
    connect(optionGroups_, &LasOptionsWidget::OpenModeChanged, this, enable);
    connect(optionGroups_, &LasOptionsWidget::PyramidSettingsChanged, this, enable);
    connect(&progress_, &DialogProgress::RunningChanged, this, enable);
    connect(grid_, &GridView::SelectionChanged, this, enable);
    connect(grid_, &GridView::SelectionChanged, this, details);
    connect(details_, &LasDetailsPanel::PaletteChanged, this, details);
    connect(details_, &LasDetailsPanel::BodyShownChanged, this, &AddLASFilesPP::PaneShown);
    connect(splitter_, &QSplitter::splitterMoved, this, [this] {
        if (details_->IsBodyShown()) {
            paneHeight_ = splitter_->sizes().last();
        }
    });
}

void AddLASFilesPP::PaneShown(bool shown) {
    // A window too low for the pane has squeezed it already; what it was before is what comes back.
    if (!shown && details_->IsFolded()) {
        paneHeight_ = splitter_->sizes().last();
    }
    details_->setMaximumHeight(shown ? QWIDGETSIZE_MAX : details_->TitleHeight());
    const int height = shown ? paneHeight_ : details_->TitleHeight();
    splitter_->setSizes({splitter_->height() - height, height});
}

void AddLASFilesPP::resizeEvent(QResizeEvent* event) {
    AddFilesPage::resizeEvent(event);
    details_->SetCrowded(height() < kRoomForPane);
    optionsPanel_->SetMostHeight(height() * 2 / 5);
}

void AddLASFilesPP::RestorePane() {
    const LasPaneState state = ReadLasPaneState(services_.options);
    const int height = state.height > 0 ? state.height : kUsualPaneHeight;
    details_->SetFolded(state.folded);
    splitter_->setSizes({2 * height, height});
    paneHeight_ = height;
}

void AddLASFilesPP::SavePane() const {
    SaveLasPaneState(services_.options, {details_->IsFolded(), paneHeight_});
}

}  // namespace orvex
