// The widgets and commands of the host's window.
#include <QAction>
#include <QApplication>
#include <QComboBox>
#include <QDesktopServices>
#include <QDir>
#include <QDockWidget>
#include <QFontDatabase>
#include <QHeaderView>
#include <QLabel>
#include <QMenuBar>
#include <QMessageBox>
#include <QPlainTextEdit>
#include <QStatusBar>
#include <QToolBar>
#include <QToolButton>
#include <QTreeView>
#include <QUndoStack>
#include <QUrl>
#include <QVBoxLayout>

#include "host/app/HostText.h"
#include "host/app/HostWindow.h"
#include "host/app/LayerTreeModel.h"
#include "host/app/MapView.h"

// The resources lie in a static library, whose initialisers a linker drops unless they are named.
static void InitHostResources() {
    Q_INIT_RESOURCE(host);
}

namespace orvex {

namespace {

constexpr int kMostUndone = 20;  ///< changes; each holds the project of before

QIcon HostIcon(const char* name) {
    static const bool loaded = (InitHostResources(), true);
    Q_UNUSED(loaded);
    QIcon icon;
    for (const int size : {16, 32}) {
        icon.addFile(QString(":/orvexhost/%1-%2.png").arg(name).arg(size), {size, size});
    }
    return icon;
}

QDockWidget* MakeDock(QMainWindow* window, const char* name, StringId title, QWidget* content) {
    auto* dock = new QDockWidget(HostText(title), window);
    dock->setObjectName(name);
    dock->setWidget(content);
    return dock;
}

}  // namespace

void HostWindow::BuildViews() {
    setWindowIcon(HostIcon("application"));
    layers_ = new LayerTreeModel(project_, this);
    tree_ = new QTreeView;
    tree_->setObjectName("layers");
    tree_->setModel(layers_);
    tree_->setUniformRowHeights(true);
    tree_->setAlternatingRowColors(true);
    tree_->setSelectionMode(QAbstractItemView::ExtendedSelection);
    tree_->header()->setStretchLastSection(false);
    tree_->header()->setSectionResizeMode(LayerTreeModel::kName, QHeaderView::Stretch);
    tree_->header()->setSectionResizeMode(LayerTreeModel::kSize, QHeaderView::ResizeToContents);
    tree_->header()->setSectionResizeMode(LayerTreeModel::kFormat, QHeaderView::ResizeToContents);
    tree_->setContextMenuPolicy(Qt::CustomContextMenu);
    connect(tree_->selectionModel(), &QItemSelectionModel::selectionChanged, this,
            &HostWindow::SelectionChanged);
    connect(tree_, &QTreeView::customContextMenuRequested, this,
            [this](const QPoint& place) { ShowFileMenu(tree_->viewport()->mapToGlobal(place)); });
    const auto nameOf = [this](const QModelIndex& index) {
        const Layer& layer = project_.layers[LayerTreeModel::LayerOf(index)];
        return std::pair(layer.kind, layer.name);
    };
    connect(tree_, &QTreeView::collapsed, this,
            [this, nameOf](const QModelIndex& index) { collapsed_.insert(nameOf(index)); });
    connect(tree_, &QTreeView::expanded, this,
            [this, nameOf](const QModelIndex& index) { collapsed_.erase(nameOf(index)); });

    record_ = new QPlainTextEdit;
    record_->setObjectName("record");
    record_->setReadOnly(true);
    record_->setLineWrapMode(QPlainTextEdit::NoWrap);
    record_->setPlaceholderText(HostText(text::kRecordDockEmpty));
    record_->setFont(QFontDatabase::systemFont(QFontDatabase::FixedFont));

    setCentralWidget(MakeMapPane());
    QDockWidget* layersDock = MakeDock(this, "layersDock", text::kLayerTreeTitle, tree_);
    QDockWidget* recordDock = MakeDock(this, "recordDock", text::kRecordDockTitle, record_);
    addDockWidget(Qt::LeftDockWidgetArea, layersDock);
    addDockWidget(Qt::LeftDockWidgetArea, recordDock);
    resizeDocks({layersDock, recordDock}, {430, 430}, Qt::Horizontal);
    resizeDocks({layersDock, recordDock}, {330, 300}, Qt::Vertical);
    viewMenu_ = new QMenu(HostText(text::kMenuView), this);
    viewMenu_->addAction(layersDock->toggleViewAction());
    viewMenu_->addAction(recordDock->toggleViewAction());
    viewMenu_->addSeparator();

    position_ = new QLabel;
    totals_ = new QLabel;
    signedIn_ = new QLabel;
    signedIn_->setObjectName("signedIn");
    statusBar()->addWidget(position_, 1);
    statusBar()->addPermanentWidget(signedIn_);
    statusBar()->addPermanentWidget(totals_);
}

QWidget* HostWindow::MakeMapPane() {
    auto* pane = new QWidget;
    map_ = new MapView(project_);
    crsChoice_ = new QComboBox;
    crsChoice_->setObjectName("crs");
    crsChoice_->setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
    crsChoice_->setMinimumContentsLength(30);
    auto* caption = new QLabel(HostText(text::kFootprintsCrsLabel));
    caption->setBuddy(crsChoice_);
    auto* fit = new QToolButton;
    fit->setIcon(HostIcon("fit"));
    fit->setToolTip(HostText(text::kFitAll));
    fit->setAccessibleName(HostText(text::kFitAll));
    fit->setAutoRaise(true);

    auto* bar = new QHBoxLayout;
    bar->setContentsMargins(6, 4, 6, 0);
    bar->addWidget(caption);
    bar->addWidget(crsChoice_, 1);
    bar->addWidget(fit);
    auto* column = new QVBoxLayout(pane);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(4);
    column->addLayout(bar);
    column->addWidget(map_, 1);

    connect(crsChoice_, &QComboBox::currentIndexChanged, this, &HostWindow::ShowChosenCrs);
    connect(fit, &QToolButton::clicked, map_, &MapView::FitAll);
    connect(map_, &MapView::FileClicked, this, &HostWindow::SelectFile);
    connect(map_, &MapView::GroundClicked, this, [this] { tree_->clearSelection(); });
    connect(map_, &MapView::MenuRequested, this,
            [this](std::size_t layer, std::size_t file, const QPoint& place) {
                if (!SelectedFiles().contains({layer, file})) {
                    SelectFile(layer, file);
                }
                ShowFileMenu(place);
            });
    connect(map_, &MapView::Hovered, this, [this](const QString& text) { position_->setText(text); });
    return pane;
}

void HostWindow::BuildActions() {
    auto* project = menuBar()->addMenu(HostText(text::kMenuProject));
    auto* edit = menuBar()->addMenu(HostText(text::kMenuEdit));
    auto* data = menuBar()->addMenu(HostText(text::kMenuData));
    menuBar()->addMenu(viewMenu_);
    auto* help = menuBar()->addMenu(HostText(text::kMenuHelp));
    auto* tools = addToolBar(HostText(text::kToolbarTitle));
    tools->setObjectName("tools");
    tools->setToolButtonStyle(Qt::ToolButtonTextBesideIcon);
    tools->setIconSize({16, 16});
    viewMenu_->addAction(tools->toggleViewAction());

    project->addAction(HostIcon("project"), HostText(text::kCommandNewProject), QKeySequence::New, this,
                       &HostWindow::NewProject);
    QAction* open = project->addAction(HostIcon("folder"), HostText(text::kCommandOpenProject),
                                       QKeySequence::Open, this, &HostWindow::ChooseProject);
    recentMenu_ = project->addMenu(HostText(text::kMenuRecentProjects));
    FillRecentMenu();
    project->addAction(HostText(text::kCommandShowFolder), this,
                       [this] { QDesktopServices::openUrl(QUrl::fromLocalFile(folder_)); });
    project->addSeparator();
    project->addAction(HostText(text::kCommandQuit), QKeySequence::Quit, this, &QWidget::close);

    // No shortcut with Ctrl: held while the dialog opens, that brings back the dialog's first size and place.
    QAction* add = data->addAction(HostIcon("add-files"), HostText(text::kCommandAddFiles),
                                   QKeySequence("Insert"), this, [this] { AddFiles(); });
    add->setObjectName("addFiles");
    data->addSeparator();
    QAction* lidar = data->addAction(HostIcon("las"), HostText(text::kCommandLidarAccess), this,
                                     &HostWindow::AskLidarAccess);
    lidar->setObjectName("lidarAccess");
    QAction* account = data->addAction(HostIcon("cloud"), HostText(text::kCommandCloudAccount), this,
                                       &HostWindow::ChooseAccount);
    account->setObjectName("cloudAccount");

    BuildFileActions(edit);
    viewMenu_->addSeparator();
    viewMenu_->addAction(HostIcon("fit"), HostText(text::kFitAll), QKeySequence("Ctrl+0"), map_,
                         &MapView::FitAll);
    viewMenu_->addAction(fileActions_.first());
    QAction* dark = viewMenu_->addAction(HostText(text::kCommandDarkAppearance));
    dark->setCheckable(true);
    dark->setChecked(preferences_.dark);
    connect(dark, &QAction::toggled, this, &HostWindow::SetDark);
    help->addAction(HostIcon("help"), HostText(text::kCommandAbout), this, &HostWindow::ShowAbout);

    tools->addActions({open, add, fileActions_.last(), lidar});
}

/// The commands of the selected files: fitting first, removing last.
void HostWindow::BuildFileActions(QMenu* edit) {
    undo_ = new QUndoStack(this);
    undo_->setUndoLimit(kMostUndone);
    QAction* undo = undo_->createUndoAction(this, HostText(text::kCommandUndo));
    undo->setObjectName("undo");
    undo->setShortcuts(QKeySequence::Undo);
    QAction* redo = undo_->createRedoAction(this, HostText(text::kCommandRedo));
    redo->setObjectName("redo");
    // On both platforms both of the usual keys.
    redo->setShortcuts({QKeySequence("Ctrl+Y"), QKeySequence("Ctrl+Shift+Z")});
    edit->addActions({undo, redo});
    edit->addSeparator();
    auto* fit = new QAction(HostText(text::kCommandFitSelection), this);
    fit->setShortcut(QKeySequence("Ctrl+1"));
    connect(fit, &QAction::triggered, map_, &MapView::FitSelected);
    QAction* show =
        edit->addAction(HostText(text::kCommandShowFileInFolder), this, &HostWindow::ShowInFolder);
    show->setObjectName("showInFolder");
    QAction* copy = edit->addAction(HostText(text::kCommandCopyPath), QKeySequence("Ctrl+Shift+C"), this,
                                    &HostWindow::CopyPaths);
    copy->setObjectName("copyPath");
    QAction* remove = edit->addAction(HostIcon("remove"), HostText(text::kCommandRemoveFromProject),
                                      QKeySequence::Delete, this, &HostWindow::RemoveSelected);
    remove->setObjectName("remove");
    fileActions_ = {fit, show, copy, remove};
}

void HostWindow::FillRecentMenu() {
    recentMenu_->clear();
    for (const QString& folder : preferences_.RecentProjects()) {
        recentMenu_->addAction(QDir::toNativeSeparators(folder), this,
                               [this, folder] { OpenProject(folder); });
    }
    recentMenu_->setEnabled(!recentMenu_->isEmpty());
}

void HostWindow::ShowAbout() {
    QMessageBox::about(
        this, HostText(text::kCommandAbout),
        HostText(text::kAboutText, {ToWide(QApplication::applicationVersion()), ToWide(folder_)}));
}

}  // namespace orvex
