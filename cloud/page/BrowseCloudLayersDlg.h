#pragma once
#include <QDialog>
#include <QTimer>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "cloud/CloudBrowserRows.h"
#include "cloud/ListingProgress.h"
#include "cloud/page/CloudRequest.h"
#include "dialog/DialogServices.h"
#include "dialog/page/ListModel.h"
#include "orvexcommon/CloudAccount.h"
#include "support/DesktopQt.h"
#include "support/HandlerGuard.h"

class QPushButton;
class QSplitter;

namespace orvex {

class CloudListPane;
class OrvexApplication;

/// The two calls of the cloud-account library that the browser makes; others in tests.
struct CloudLibrary {
    std::function<void(const CloudAccount& account, ArchivingProjectList& list, const std::wstring& filter,
                       const CloudCall& call)>
        listProjects = listArchivingProjects;
    std::function<CloudOutcome(const CloudAccount& account, const std::string& project,
                               const std::string& page, std::string& json, const CloudCall& call)>
        getFiles = getArchivingProjectFiles;
};

/// Lets the user pick layers from the projects of the signed-in account. Lists come page by page, read on
/// threads of their own. Child objects: "projects" and "layers" (see CloudListPane), "ok", "cancel", "help".
class BrowseCloudLayersDlg : public QDialog {
    Q_OBJECT

  public:
    /// `application`: gives the account; null: the object of `services.hostObjects` is asked. Both outlive
    /// the dialog.
    BrowseCloudLayersDlg(OrvexApplication* application, DialogServices& services, QWidget* parent,
                         CloudLibrary library = {});
    ~BrowseCloudLayersDlg() override;

    /// The layers that were selected, in any project, when the dialog was closed with OK; otherwise none.
    /// Each has a URL.
    std::vector<CloudLayer> SelectedLayers() const { return selected_; }

  public slots:
    /// Shows nothing when the window could not be made, which has been told then.
    int exec() override;
    void accept() override;
    void reject() override;
    void done(int result) override;

  protected:
    void showEvent(QShowEvent* event) override;

  private:
    using SharedAccount = std::shared_ptr<const CloudAccount>;

    /// A list that is read page by page.
    struct List {
        const wchar_t* step;  ///< named in messages of failures
        StringId empty;       ///< says that the whole list is empty
        void (BrowseCloudLayersDlg::*read)();
        CloudListPane* pane = nullptr;
        CloudRequest* request = nullptr;
        ListingProgress progress = {};
    };

    /// True if the step has not failed; a failure is told under the step's name.
    template <typename Step>
    bool RunStep(const wchar_t* name, Step&& step) noexcept {
        try {
            step();
            return true;
        } catch (...) {
            ShowHandlerException(services_.prompts, name, text::kCloudErrorCaption);
            return false;
        }
    }
    void InitializeColumns();
    void BuildWindow();
    QWidget* BuildButtons();
    void Connect(List& list);
    void ConnectGrids();
    void Place();

    SharedAccount AskAccount() const;
    void ClearLists();
    void PopulateFolders();
    void ReadProjects();
    void TakeProjects(const ArchivingProjectList& page);
    void OnProject(int row);
    void OnProjectsFiltered();
    void ClearLayers();
    void PopulateLayers();
    void ReadLayers();
    void TakeLayers(const CloudListingPage& page, std::size_t bytes);
    void OnAnswer(List& list, const CloudRequest::Answer& answer);
    void ContinueReading(List& list);
    void KeepSelection();
    void SelectKept(std::size_t firstRecord);
    void OnDeselect();
    std::vector<std::size_t> SelectedRecords() const;
    void EnableItems();
    void SavePlacement() const;
    void OnBnClickedOk();
    void OnBnClickedHelp();

    const ParentGuard guard_{*this};
    OrvexApplication* application_;
    DialogServices& services_;
    const CloudLibrary library_;
    SharedAccount account_;  ///< null: nobody is signed in
    std::unique_ptr<ListModel<CloudProjectRow>> projectRows_;
    std::unique_ptr<ListModel<CloudLayerRow>> layerRows_;
    std::unique_ptr<SharedTexts> texts_;  ///< of the layers
    List projects_;
    List layers_;
    std::optional<std::string> project_;  ///< whose layers are shown
    KeptLayers kept_;                     ///< in other projects
    QTimer layersLater_{this};  ///< while the user moves through the projects none of them is asked for
    QSplitter* splitter_ = nullptr;
    QPushButton* ok_ = nullptr;
    std::vector<CloudLayer> selected_;
    bool hasBegun_ = false;
    bool isFiltering_ = false;  ///< the projects
};

}  // namespace orvex
