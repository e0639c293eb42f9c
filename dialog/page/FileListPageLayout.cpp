// How a file page is built; what it does is in FileListPage.cpp.
#include <QEvent>
#include <QLabel>
#include <QPushButton>
#include <QShortcut>
#include <QSplitter>
#include <QTableView>
#include <QToolButton>
#include <QVBoxLayout>
#include <algorithm>
#include <utility>

#include "dialog/DialogProgress.h"
#include "dialog/HandlerGuard.h"
#include "dialog/grid/GridView.h"
#include "dialog/page/ControlWidget.h"
#include "dialog/page/FileListPage.h"
#include "dialog/page/FileRows.h"
#include "dialog/page/Mnemonics.h"
#include "dialog/page/OptionsPanel.h"
#include "dialog/page/PaneState.h"

namespace orvex {

namespace {

constexpr int kUsualPaneHeight = 250;
// What the grid shows at least where the details pane is unfolded.
constexpr int kRowsBesidePane = 5;

}  // namespace

FileListPage::FileListPage(const PageContext& context, FileListPageDescription description, QWidget* parent)
    : AddFilesPage(parent),
      services_(context.services),
      params_(*context.params),
      progress_(context.progress),
      description_(std::move(description)),
      grid_(new GridView),
      details_(new DetailsPanel(context.images, description_.detailsTabs)),
      splitter_(new QSplitter(Qt::Vertical)) {
    setAcceptDrops(true);
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(8, 8, 8, 8);
    layout->setSpacing(6);
    layout->addWidget(MakeButtonRow());
    MakeSplitter();
    layout->addWidget(splitter_, 1);
    grid_->SetIcons(context.images);
    grid_->SetEmptyText(ToQString(Text(description_.emptyText)));
}

FileListPage::~FileListPage() {
    Detach();
}

void FileListPage::Start(FileRows& rows, QWidget* options, bool detailColumns) {
    rows_ = &rows;
    optionsPanel_ = new OptionsPanel(options);
    layout()->addWidget(optionsPanel_);
    RunGuarded(services_.prompts, L"InitializeColumns", [this] { grid_->SetModel(rows_); });
    AssignMnemonics(*this);
    detailColumns_->setChecked(detailColumns);
    OnDetailColumns();
    ConnectButtons();
    ConnectGrid();
    ConnectPane();
    RestorePane();
    ShowDetails();
    EnableItems();
}

void FileListPage::Detach() {
    if (rows_ == nullptr) {
        return;
    }
    SavePane();
    progress_.disconnect(this);
    grid_->disconnect(this);
    details_->disconnect(this);
    splitter_->removeEventFilter(this);
    grid_->SetModel(nullptr);
    rows_ = nullptr;
}

QWidget* FileListPage::MakeButtonRow() {
    const FileListControls& ids = description_.controls;
    auto* row = new QWidget;
    auto* layout = new QHBoxLayout(row);
    layout->setContentsMargins(0, 0, 0, 0);
    auto* caption = MakeControl<QLabel>(ids.filesCaption, description_.filesCaption);
    caption->setBuddy(grid_->Table());  // a label gives the focus to none that refuses it itself
    layout->addWidget(caption);
    layout->addStretch();
    const auto add = [&](int id, const FileListPageDescription::Button& texts, ButtonImage image) {
        layout->addWidget(MakeButton(id, texts.caption, texts.tooltip, image));
    };
    const auto addIcon = [&](int id, StringId tooltip, ButtonImage image) {
        if (id != 0) {
            layout->addWidget(MakeIconButton(id, tooltip, image));
        }
    };
    add(ids.addFiles, description_.addFiles, ButtonImage::AddFiles);
    add(ids.addFolder, description_.addFolder, ButtonImage::AddFolder);
    add(ids.remove, description_.remove, ButtonImage::Remove);
    add(ids.clear, description_.clear, ButtonImage::Clear);
    layout->addWidget(MakeDetailColumnsButton());
    addIcon(ids.selectAll, description_.selectAllTooltip, ButtonImage::AllRows);
    addIcon(ids.refresh, description_.refreshTooltip, ButtonImage::Refresh);
    addIcon(ids.help, description_.helpTooltip, ButtonImage::Help);
    return row;
}

QPushButton* FileListPage::MakeDetailColumnsButton() {
    detailColumns_ =
        MakeControl<QPushButton>(description_.controls.detailColumns, {}, description_.detailColumnsTooltip);
    detailColumns_->setCheckable(true);
    detailColumns_->setAutoDefault(false);
    detailColumns_->setAccessibleName(detailColumns_->toolTip());
    detailColumns_->setFixedWidth(detailColumns_->fontMetrics().horizontalAdvance(QStringLiteral(">>")) + 24);
    return detailColumns_;
}

void FileListPage::MakeSplitter() {
    grid_->setObjectName(ControlName(description_.controls.grid));
    grid_->setMinimumHeight(90);
    splitter_->setObjectName(QString::fromLatin1(description_.splitterName));
    splitter_->setChildrenCollapsible(false);
    splitter_->addWidget(grid_);
    splitter_->addWidget(details_);
    splitter_->setStretchFactor(0, 1);
    splitter_->setStretchFactor(1, 0);
}

void FileListPage::ConnectButtons() {
    UserPrompts& prompts = services_.prompts;
    const auto click = [&](int id, const wchar_t* name, void (FileListPage::*handler)()) {
        if (auto* button = findChild<QAbstractButton*>(ControlName(id))) {
            connect(button, &QAbstractButton::clicked, this,
                    Guarded(prompts, name, [this, handler] { (this->*handler)(); }));
        }
    };
    const FileListControls& ids = description_.controls;
    click(ids.addFiles, L"OnAddFiles", &FileListPage::OnAddFiles);
    click(ids.addFolder, L"OnAddFolder", &FileListPage::OnAddFolder);
    click(ids.remove, L"OnRemove", &FileListPage::OnRemove);
    click(ids.clear, L"OnClear", &FileListPage::OnClear);
    click(ids.detailColumns, L"OnDetailColumns", &FileListPage::OnDetailColumns);
    click(ids.selectAll, L"OnSelectAll", &FileListPage::OnSelectAll);
    click(ids.refresh, L"OnRefresh", &FileListPage::OnRefresh);
    click(ids.help, L"OnContextHelp", &FileListPage::OnContextHelp);
    auto* help = new QShortcut(QKeySequence(Qt::Key_F1), this);
    help->setContext(Qt::WindowShortcut);  // OK has the focus mostly; a page that is hidden hears nothing
    connect(help, &QShortcut::activated, this, Guarded(prompts, L"OnHelp", [this] { OnHelp(); }));
}

void FileListPage::ConnectGrid() {
    UserPrompts& prompts = services_.prompts;
    const auto enable = Guarded(prompts, L"EnableItems", [this] { EnableItems(); });
    const auto details = Guarded(prompts, L"ShowDetails", [this] { ShowDetails(); });
    connect(&progress_, &DialogProgress::RunningChanged, this, enable);
    connect(grid_, &GridView::SelectionChanged, this, enable);
    connect(grid_, &GridView::SelectionChanged, this, details);
    connect(grid_, &GridView::RemoveRequested, this, Guarded(prompts, L"OnRemove", [this] { OnRemove(); }));
    connect(details_, &DetailsPanel::PaletteChanged, this, details);
}

void FileListPage::ConnectPane() {
    splitter_->installEventFilter(this);
    connect(details_, &DetailsPanel::BodyShownChanged, this, &FileListPage::ArrangePane);
    connect(splitter_, &QSplitter::splitterMoved, this, [this] {
        if (details_->IsBodyShown()) {
            paneHeight_ = splitter_->sizes().last();
        }
    });
}

// The pane is as high as the user left it; where there is no room for that, it yields before the grid does.
void FileListPage::ArrangePane() {
    const int room = splitter_->height() - splitter_->handleWidth() - grid_->HeightOfRows(kRowsBesidePane);
    details_->SetCrowded(room < details_->LeastHeight());
    const bool shown = details_->IsBodyShown();
    const int height = shown ? std::min(paneHeight_, room) : details_->TitleHeight();
    details_->setMaximumHeight(shown ? QWIDGETSIZE_MAX : height);
    splitter_->setSizes({splitter_->height() - height, height});
}

bool FileListPage::eventFilter(QObject* watched, QEvent* event) {
    if (watched == splitter_ && event->type() == QEvent::Resize) {
        ArrangePane();
    }
    return AddFilesPage::eventFilter(watched, event);
}

void FileListPage::resizeEvent(QResizeEvent* event) {
    AddFilesPage::resizeEvent(event);
    if (optionsPanel_ != nullptr) {
        optionsPanel_->SetMostHeight(height() * 2 / 5);
    }
}

void FileListPage::RestorePane() {
    const PaneState state = ReadPaneState(services_.options, description_.paneStateName);
    paneHeight_ = state.height > 0 ? state.height : kUsualPaneHeight;
    details_->SetFolded(state.folded);
}

void FileListPage::SavePane() const {
    SavePaneState(services_.options, description_.paneStateName, {details_->IsFolded(), paneHeight_});
}

}  // namespace orvex
