#include "host/app/HostWindow.h"

#include <QCloseEvent>
#include <QComboBox>
#include <QDir>
#include <QDragEnterEvent>
#include <QFileDialog>
#include <QFileInfo>
#include <QLabel>
#include <QMessageBox>
#include <QMimeData>
#include <QPlainTextEdit>
#include <QPointer>
#include <QScopeGuard>
#include <QStatusBar>
#include <QTimer>
#include <QTreeView>
#include <QUndoStack>
#include <algorithm>

#include "host/app/Application.h"
#include "host/app/CloudSignIn.h"
#include "host/app/HostText.h"
#include "host/app/LayerTreeModel.h"
#include "host/app/MapView.h"
#include "host/app/ProjectFile.h"
#include "host/app/RecordFiles.h"
#include "host/app/RecordIntake.h"
#include "host/objects/HostClasses.h"
#include "orvexcommon/Exports.h"
#include "orvexcommon/HostInterfaces.h"
#include "orvexcommon/OrvexUtilities.h"
#include "support/DesktopQt.h"

namespace orvex {

namespace {

std::unique_ptr<OrvexApplication> MakeApplicationObject() {
    std::int32_t result = kHostOk;
    std::unique_ptr<HostObject> object = CreateHostObject(kApplicationClass, result);
    auto* application = dynamic_cast<OrvexApplication*>(object.get());
    if (application != nullptr) {
        (void)object.release();
    }
    return std::unique_ptr<OrvexApplication>(application);
}

/// A record that deletes its details, which belong to the host after OK.
struct OwnedRecord : AddFilesParams {
    OwnedRecord() = default;
    ~OwnedRecord() { DeleteDetails(*this); }
    OwnedRecord(const OwnedRecord&) = delete;
    OwnedRecord& operator=(const OwnedRecord&) = delete;
};

QString ReportText(const std::vector<ReportPrompt::Section>& sections) {
    QString text;
    for (const auto& [heading, lines] : sections) {
        text += ToQString(heading) + '\n';
        for (const std::wstring& line : lines) {
            text += "  " + ToQString(line) + '\n';
        }
    }
    return text;
}

}  // namespace

HostWindow::HostWindow(HostPreferences& preferences, QWidget* parent)
    : QMainWindow(parent), preferences_(preferences) {
    setObjectName("hostWindow");
    setAcceptDrops(true);
    resize(1180, 760);
    BuildViews();
    BuildActions();
    restoreGeometry(preferences_.windowGeometry);
    FitOntoScreen(*this);
    restoreState(preferences_.windowState);
    ProjectChanged();
    SetAccount(std::nullopt);
}

HostWindow::~HostWindow() {
    // Deleted before the project they show: Qt deletes children only after the members are gone.
    delete tree_;
    delete map_;
}

bool HostWindow::OpenProject(const QString& folder) {
    const QString full = QDir(folder).absolutePath();
    QString problem;
    std::optional<Project> opened = Project();
    if (IsProjectFolder(full)) {
        opened = LoadProject(full, problem);
    } else if (!SaveProject(full, *opened, problem)) {
        opened.reset();
    }
    if (!opened) {
        preferences_.RemoveRecentProject(full);
        FillRecentMenu();
        QMessageBox::warning(this, HostText(text::kHostName), problem);
        return false;
    }
    folder_ = full;
    undo_->clear();
    collapsed_.clear();
    project_ = std::move(*opened);
    record_->clear();
    preferences_.AddRecentProject(full);
    preferences_.Save();
    FillRecentMenu();
    ProjectChanged();
    ShowLayer(project_.MainLayer());
    return true;
}

bool HostWindow::AddFiles(const QStringList& paths) {
    const std::unique_ptr<OrvexApplication> application = MakeApplicationObject();
    OwnedRecord record;
    record.hostApplication = application.get();
    record.initialTab = host::LastAddFilesTab();
    record.showRasterTab = true;
    record.showDemTab = true;
    record.showPhotoTab = true;
    record.showFeatureTab = true;
    record.showCloudTab = true;
    record.initialFolder = ToWidePath(preferences_.dataFolder.isEmpty() ? folder_ : preferences_.dataFolder);
    record.existingLasLayers = project_.LayersForDialog(LayerKind::Las);
    record.existingRasterLayers = project_.LayersForDialog(LayerKind::Raster);
    record.existingFeatureLayers = project_.LayersForDialog(LayerKind::Feature);
    record.existingLasFiles = project_.PathsOf(LayerKind::Las);
    record.existingRasterFiles = project_.PathsOf(LayerKind::Raster);
    record.existingFeatureFiles = project_.PathsOf(LayerKind::Feature);
    record.existingPhotoFiles = project_.PathsOf(LayerKind::Photo);
    for (const QString& path : paths) {
        record.initialPaths.push_back(ToWidePath(QDir::current().absoluteFilePath(path)));
    }
    if (!ShowAddFilesDialog(&record)) {
        return false;
    }
    TakeRecord(record);
    return true;
}

void HostWindow::TakeRecord(const AddFilesParams& record) {
    RememberFolder(record);
    Project changed = project_;
    map_->ClosePoints();  // what is open cannot be replaced everywhere
    auto showAgain = qScopeGuard([this] { map_->ReloadPoints(); });
    const IntakeResult result =
        RecordIntake(changed, folder_, preferences_.writesBesideData, this).Take(record);
    counts_ = {CountFiles(record.lasFiles),
               CountFiles(record.rasterFiles),
               CountFiles(record.demFiles),
               result.convertedDems,
               record.photoFiles.size(),
               record.featureFiles.size(),
               record.presignedUrlLayers.size() + record.cloudLasLayers.size()};
    record_->setPlainText(result.status + '\n' + ReportText(result.report) + '\n' +
                          ToQString(RecordText(record)));
    if (result.mainLayer) {
        showAgain.dismiss();
        Change(std::move(changed), text::kChangeAdd);
        ShowCrsOf(*result.mainLayer);
        SelectFiles(result.places);
        map_->FitSelected();
    }
    statusBar()->showMessage(result.status, 8000);
    if (!result.news.empty()) {
        UserPromptsQt(this).ShowReport(
            {Text(text::kAddFilesTitle), ToWide(result.status), result.news, Text(text::kOk), {}});
    }
}

/// Switches the map to the CRS of a layer and fits all of it.
void HostWindow::ShowLayer(const std::optional<std::size_t>& layer) {
    if (layer) {
        ShowCrsOf(*layer);
    }
    map_->FitAll();
}

/// Switches the map to the CRS of a layer, if that is known.
void HostWindow::ShowCrsOf(std::size_t layer) {
    if (project_.layers[layer].kind != LayerKind::Cloud) {
        crsChoice_->setCurrentIndex(CrsIndexOf(project_.layers[layer].wkt));
    }
}

/// Stores the folder where the next dialog's pickers open: rasters and elevation models tend to come from one
/// place.
void HostWindow::RememberFolder(const AddFilesParams& record) {
    for (const FilesByFolder* files : {&record.rasterFiles, &record.demFiles}) {
        if (!files->empty()) {
            preferences_.dataFolder = ToQString(files->begin()->first);
            preferences_.Save();
            return;
        }
    }
    if (!record.photoFiles.empty()) {
        preferences_.dataFolder = ToQString(FolderOf(record.photoFiles.front()));
        preferences_.Save();
    }
}

void HostWindow::AskLidarAccess() {
    // The command is there to change the answer, also one that is remembered.
    host::ForgetLidarAnswer();
    const AddLidarChoice choice = GetAddingLidarChoice(QFileInfo(folder_).isWritable());
    Project changed = project_;
    changed.lidarAccess = static_cast<LidarAccess>(choice);
    Change(std::move(changed), text::kChangeLidarAccess);
    constexpr StringId kAnswers[] = {text::kStatusLidarReadOnly, text::kStatusLidarReadWrite,
                                     text::kStatusLidarNotAdded};
    statusBar()->showMessage(HostText(kAnswers[choice]), 8000);
}

bool HostWindow::ShowKind(LayerKind kind) {
    FilePlaces files;
    for (std::size_t layer = 0; layer < project_.layers.size(); ++layer) {
        for (std::size_t i = 0;
             project_.layers[layer].kind == kind && i < project_.layers[layer].files.size(); ++i) {
            files.emplace(layer, i);
        }
    }
    if (!files.empty()) {
        ShowLayer(files.begin()->first);
        SelectFiles(files);
        map_->FitSelected();
    }
    return !files.empty();
}

QString HostWindow::LastRecord() const {
    return record_->toPlainText();
}

bool HostWindow::IsLoading() const {
    return map_->IsLoading();
}

void HostWindow::NewProject() {
    const QString folder =
        QFileDialog::getExistingDirectory(this, HostText(text::kNewProjectFolderTitle), folder_);
    if (folder.isEmpty()) {
        return;
    }
    if (IsProjectFolder(folder)) {
        QMessageBox::information(this, HostText(text::kHostName), HostText(text::kFolderHoldsProject));
    }
    OpenProject(folder);
}

void HostWindow::ChooseProject() {
    const QString folder =
        QFileDialog::getExistingDirectory(this, HostText(text::kOpenProjectFolderTitle), folder_);
    if (folder.isEmpty()) {
        return;
    }
    if (!IsProjectFolder(folder)) {
        QMessageBox::warning(this, HostText(text::kHostName),
                             HostText(text::kFolderHoldsNoProject, {ToWide(folder)}));
        return;
    }
    OpenProject(folder);
}

/// Index of the choice whose CRS is compatible with a WKT's, however each is worded; -1 for none.
int HostWindow::CrsIndexOf(const std::string& wkt) {
    for (int i = 0; i < crsChoice_->count(); ++i) {
        if (crsGroups_.Of(crsChoice_->itemData(i).toByteArray().toStdString()) == crsGroups_.Of(wkt)) {
            return i;
        }
    }
    return -1;
}

void HostWindow::FillCrsChoice() {
    const std::string shown = crsChoice_->currentData().toByteArray().toStdString();
    const QSignalBlocker blocker(crsChoice_);
    crsChoice_->clear();
    for (const Layer& layer : project_.layers) {
        if (layer.kind == LayerKind::Cloud || CrsIndexOf(layer.wkt) >= 0) {
            continue;
        }
        const std::string name = OrvexUtilities::CrsGetCRSName(layer.wkt);
        crsChoice_->addItem(name.empty() ? HostText(text::kNoCrs) : QString::fromStdString(name),
                            QByteArray::fromStdString(layer.wkt));
    }
    crsChoice_->setEnabled(crsChoice_->count() > 1);
    crsChoice_->setCurrentIndex(std::max(0, CrsIndexOf(shown)));
}

/// The map keeps its place as long as it shows the same coordinate system.
void HostWindow::ShowChosenCrs() {
    const std::string wkt = crsChoice_->currentData().toByteArray().toStdString();
    if (crsGroups_.Of(wkt) == crsGroups_.Of(map_->Crs())) {
        map_->Reload();
    } else {
        map_->ShowCrs(wkt);
    }
}

void HostWindow::ReloadTree() {
    layers_->Reload();
    const QSignalBlocker blocker(tree_);  // which would tell of layers that the user unfolds
    tree_->expandAll();
    for (std::size_t layer = 0; layer < project_.layers.size(); ++layer) {
        if (collapsed_.contains({project_.layers[layer].kind, project_.layers[layer].name})) {
            tree_->collapse(layers_->index(static_cast<int>(layer), 0));
        }
    }
}

void HostWindow::ProjectChanged() {
    ReloadTree();
    FillCrsChoice();
    ShowChosenCrs();
    SelectionChanged();
    const QString name = folder_.isEmpty() ? QString() : QDir(folder_).dirName();
    setWindowTitle(name.isEmpty() ? HostText(text::kHostName)
                                  : name + " \u2013 " + HostText(text::kHostName));
    totals_->setText(HostText(text::kStatusProjectCounts, {project_.layers.size(), project_.FileCount()}));
}

bool HostWindow::SaveNow() {
    QString problem;
    if (folder_.isEmpty() || SaveProject(folder_, project_, problem)) {
        return true;
    }
    QMessageBox::warning(this, HostText(text::kHostName), problem);
    return false;
}

/// Saves the project. If that fails, the user may close without saving: a folder that is gone or read-only
/// must not keep the program open.
bool HostWindow::SaveBeforeClosing() {
    QString problem;
    if (folder_.isEmpty() || SaveProject(folder_, project_, problem)) {
        return true;
    }
    return UserPromptsQt(this).Show({ToWide(problem) + L"\n\n" + Text(text::kCloseUnsavedQuestion),
                                     Text(text::kHostName), PromptIcon::Warning, PromptButtons::YesNo}) ==
           PromptAnswer::Yes;
}

void HostWindow::SetAccount(std::optional<CloudAccount> account) {
    account_ = std::move(account);
    signedIn_->setText(account_ ? HostText(text::kStatusSignedIn, {account_->userName})
                                : HostText(text::kStatusSignedOut));
    signedIn_->setToolTip(account_ ? TooltipText(ToQString(account_->service)) : QString());
}

void HostWindow::ChooseAccount() {
    CloudAccountDlg dialog(preferences_, account_, this);
    if (dialog.exec() == QDialog::Accepted) {
        SetAccount(dialog.Account());
        preferences_.cloudService = account_ ? ToQString(account_->service) : QString();
        preferences_.Save();
    }
}

void HostWindow::SetDark(bool dark) {
    preferences_.dark = dark;
    ApplyAppearance(dark);
    preferences_.Save();
}

void HostWindow::closeEvent(QCloseEvent* event) {
    preferences_.windowGeometry = saveGeometry();
    preferences_.windowState = saveState();
    preferences_.Save();
    event->setAccepted(SaveBeforeClosing());
}

void HostWindow::dragEnterEvent(QDragEnterEvent* event) {
    if (event->mimeData()->hasUrls()) {
        event->acceptProposedAction();
    }
}

void HostWindow::dropEvent(QDropEvent* event) {
    QStringList paths;
    for (const QUrl& url : event->mimeData()->urls()) {
        if (url.isLocalFile()) {
            paths.append(url.toLocalFile());
        }
    }
    event->acceptProposedAction();
    // The drag source is blocked until this returns, so the dialog opens later.
    QTimer::singleShot(0, this, [this, paths] { AddFiles(paths); });
}

}  // namespace orvex
