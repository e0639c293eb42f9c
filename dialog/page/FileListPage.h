#pragma once
#include <functional>
#include <span>
#include <string>
#include <vector>

#include "dialog/details/DetailsPanel.h"
#include "dialog/page/AddFilesPage.h"
#include "dialog/page/FileAdder.h"
#include "dialog/page/FileListPageDescription.h"

class QPushButton;
class QSplitter;

namespace orvex {

class FileRows;
class GridView;
class OptionsPanel;

/// What every page that lists files shares: the row of buttons, the grid, the details pane that folds, the
/// area of the page's own options, and everything that happens to rows. A page derives from FileListPageOf,
/// which knows the type of its rows, describes what differs, and overrides what it does with them.
class FileListPage : public AddFilesPage {
    Q_OBJECT

  public:
    ~FileListPage() override;

    bool ValidateAndStore() override;
    void Release() override;
    /// Folders among the paths are searched with their subfolders; files of other kinds are left out.
    void AddPaths(const std::vector<std::wstring>& paths) override;
    bool Accepts(const std::wstring& path) const override;

  protected:
    FileListPage(const PageContext& context, FileListPageDescription description, QWidget* parent);

    /// The last step of a page's constructor: shows its rows and, below them, its options (owned by the page
    /// from here on).
    void Start(FileRows& rows, QWidget* options, bool detailColumns);
    /// For the destructor of a page that still changes rows: nothing shows them, and nothing is asked of the
    /// page, from here on.
    void Detach();

    const DialogServices& Services() const { return services_; }
    AddFilesParams& Params() const { return params_; }
    DialogProgress& Progress() const { return progress_; }
    GridView& Grid() const { return *grid_; }
    const FileListPageDescription& Description() const { return description_; }
    const DetailsPanel& DetailsPane() const { return *details_; }
    /// For `detailColumns` of the page's settings.
    bool DetailColumnsShown() const;
    /// Indices of all records, in the order that the grid shows them.
    std::vector<std::size_t> ShownRecords() const;
    std::vector<std::size_t> SelectedRecords() const;
    void ShowMessage(std::wstring text, StringId caption, PromptIcon icon) const;

    /// Brings everything up to date after rows, or options on which they depend, have changed.
    void Update();
    void ShowDetails();
    void EnableItems();

    /// Files are about to be added, removed or read again; what OK wrote for another page's refusal to undo
    /// is to be taken back.
    virtual void BeforeRowsChange() {}
    /// Rows have been added, removed or read again: recompute what depends on all of them.
    virtual void RowsChanged() {}
    /// What the details pane shows of these records; there is at least one.
    virtual DetailsContent Details(std::span<const std::size_t> records) const = 0;
    /// Every control whose state depends on something. Overrides add the page's own to the shared ones.
    virtual std::vector<ControlState> ControlStates(const FileListState& state) const;
    /// ValidateAndStore, within its guard.
    virtual bool Store() = 0;

    /// Inspects files and appends their rows; `appended` is called after each batch. Within a run.
    virtual AddingSummary AddRows(AddingRequest request, const std::function<void()>& appended) = 0;
    /// Inspects the files of all rows again, the last one first, which Escape may stop. True when a row has
    /// something new to say. Within a run.
    virtual bool RereadRows() = 0;

    void dragEnterEvent(QDragEnterEvent* event) override;
    void dropEvent(QDropEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;

  private:
    QWidget* MakeButtonRow();
    QPushButton* MakeDetailColumnsButton();
    void MakeSplitter();
    void ConnectButtons();
    void ConnectGrid();
    void ConnectPane();

    void OnAddFiles();
    void OnAddFolder();
    void OnRemove();
    void OnClear();
    void OnDetailColumns();
    void OnSelectAll();
    void OnRefresh();
    void OnHelp();
    void OnContextHelp();
    void OnDropFiles(const QDropEvent& event);
    void ArrangePane();
    void RestorePane();
    void SavePane() const;

    void AddFound(std::vector<std::wstring> paths, bool recursive);
    void AddFiles(std::vector<std::wstring> paths);
    void FilesAdded(bool wasEmpty);
    void FitColumns();
    void ShowPickFailure(const FixedText& text) const;

    DialogServices services_;
    AddFilesParams& params_;
    DialogProgress& progress_;
    FileListPageDescription description_;

    FileRows* rows_ = nullptr;  ///< null before Start and after Detach
    GridView* grid_;
    DetailsPanel* details_;
    QSplitter* splitter_;
    OptionsPanel* optionsPanel_ = nullptr;
    QPushButton* detailColumns_ = nullptr;
    int paneHeight_ = 0;
};

}  // namespace orvex
