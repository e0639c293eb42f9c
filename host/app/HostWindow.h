#pragma once
#include <QList>
#include <QMainWindow>
#include <QStringList>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <utility>

#include "host/app/HostPreferences.h"
#include "host/app/Project.h"
#include "orvexcommon/CloudAccount.h"
#include "support/Text.h"

class AddFilesParams;
class QComboBox;
class QLabel;
class QMenu;
class QPlainTextEdit;
class QTreeView;
class QUndoStack;

namespace orvex {

class MapView;
class LayerTreeModel;

/// Files of a record by kind, and elevation files that were converted to LAS.
struct RecordCounts {
    std::size_t las = 0;
    std::size_t rasters = 0;
    std::size_t dems = 0;
    std::size_t convertedDems = 0;
    std::size_t photos = 0;
    std::size_t features = 0;
    std::size_t cloudLayers = 0;
};

/// Main window of the reference host: a project's layers, their map and the text of the last record.
class HostWindow final : public QMainWindow {
    Q_OBJECT

  public:
    explicit HostWindow(HostPreferences& preferences, QWidget* parent = nullptr);
    ~HostWindow() override;

    /// Opens the project in a folder or creates one there. False after showing the reason of a failure.
    bool OpenProject(const QString& folder);
    /// Runs the Add Files dialog, which adds these files and folders when it opens, and adds its result to
    /// the project. True when the record held files.
    bool AddFiles(const QStringList& paths = {});
    /// Adds the files of a record to the project, shows and selects them, and reports those left out.
    void TakeRecord(const AddFilesParams& record);
    /// Signs the user in to an account, or out.
    void SetAccount(std::optional<CloudAccount> account);
    const std::optional<CloudAccount>& Account() const { return account_; }
    /// Asks for the access to LiDAR data and stores the answer in the project.
    void AskLidarAccess();

    /// Folder of the open project; empty if none is open.
    const QString& ProjectFolder() const { return folder_; }
    const Project& CurrentProject() const { return project_; }
    /// Selects and shows the layers of a kind; false if there are none.
    bool ShowKind(LayerKind kind);
    /// True while thumbnails of the project's rasters are being read.
    bool IsLoading() const;
    /// Text of the last record.
    QString LastRecord() const;
    const RecordCounts& LastRecordCounts() const { return counts_; }

  protected:
    void closeEvent(QCloseEvent* event) override;
    void dragEnterEvent(QDragEnterEvent* event) override;
    void dropEvent(QDropEvent* event) override;

  private:
    void BuildActions();
    void BuildViews();
    QWidget* MakeMapPane();
    void FillRecentMenu();
    void NewProject();
    void ChooseProject();
    void Change(Project changed, StringId name);
    void RemoveSelected();
    FilePlaces SelectedFiles() const;
    void SelectionChanged();
    void SelectFiles(const FilePlaces& files);
    void SelectFile(std::size_t layer, std::size_t file);
    void ShowFileMenu(const QPoint& place);
    void CopyPaths();
    void ShowInFolder();
    void FillCrsChoice();
    void ShowChosenCrs();
    void ProjectChanged();
    bool SaveNow();
    bool SaveBeforeClosing();
    void BuildFileActions(QMenu* edit);
    void ReloadTree();
    void ShowLayer(const std::optional<std::size_t>& layer);
    void ShowCrsOf(std::size_t layer);
    void RememberFolder(const AddFilesParams& record);
    int CrsIndexOf(const std::string& wkt);
    void SetDark(bool dark);
    void ChooseAccount();
    void ShowAbout();

    HostPreferences& preferences_;
    QString folder_;
    std::optional<CloudAccount> account_;
    RecordCounts counts_;
    Project project_;
    CrsGroups crsGroups_;
    LayerTreeModel* layers_ = nullptr;
    QTreeView* tree_ = nullptr;
    MapView* map_ = nullptr;
    QComboBox* crsChoice_ = nullptr;
    QPlainTextEdit* record_ = nullptr;
    QLabel* position_ = nullptr;
    QLabel* totals_ = nullptr;
    QLabel* signedIn_ = nullptr;
    QUndoStack* undo_ = nullptr;
    QList<QAction*> fileActions_;                             ///< on the selected files
    std::set<std::pair<LayerKind, std::wstring>> collapsed_;  ///< layers that the user has folded
    QMenu* recentMenu_ = nullptr;
    QMenu* viewMenu_ = nullptr;
};

}  // namespace orvex
