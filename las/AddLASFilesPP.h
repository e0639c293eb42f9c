#pragma once
#include <memory>
#include <vector>

#include "dialog/AddFilesPage.h"
#include "dialog/FileAdder.h"
#include "las/LasPageOptions.h"
#include "las/LasPageStore.h"

class QPushButton;
class QSplitter;
class QToolButton;

namespace orvex {

class AddLASFilesModel;
class GridView;
class LasDetailsPanel;
class LasOptionsPanel;
class LasOptionsWidget;

/// The LAS files page. Every control is named "c" and its id.
class AddLASFilesPP final : public AddFilesPage {
    Q_OBJECT

  public:
    explicit AddLASFilesPP(const PageContext& context, QWidget* parent = nullptr);
    ~AddLASFilesPP() override;

    bool ValidateAndStore() override;
    void Release() override;
    /// Folders among the paths are searched with their subfolders; files of other kinds are left out.
    void AddPaths(const std::vector<std::wstring>& paths) override;
    bool Accepts(const std::wstring& path) const override;
    bool NeedsCompanionFiles() const override;

    const AddLASFilesModel& Model() const { return *model_; }

  protected:
    void dragEnterEvent(QDragEnterEvent* event) override;
    void dropEvent(QDropEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

  private:
    void BuildLayout();
    QWidget* MakeButtonRow();
    void MakeSplitter();
    void InitializeColumns();
    void ConnectButtons();
    void ConnectGroups();
    void ReadOptions();

    void OnAddFiles();
    void OnAddFolder();
    void OnRemove();
    void OnClear();
    void OnDetailColumns();
    void OnRefresh();
    void OnHelp();
    void EnableItems();
    void ShowDetails();
    void PaneShown(bool shown);

    void AddFound(std::vector<std::wstring> paths, bool recursive);
    void AddFiles(std::vector<std::wstring> paths);
    void FilesAdded(bool wasEmpty);
    void AssignLayers();
    bool Store();
    void ShowFailures(const std::vector<LasFileFailure>& failures);
    void ShowPickFailure(StringId text);
    /// Indices of all records, in the order that the grid shows them.
    std::vector<std::size_t> ShownRecords() const;
    std::vector<std::size_t> SelectedRecords() const;
    void RestorePane();
    void SavePane() const;

    DialogServices services_;
    AddFilesParams& params_;
    DialogProgress& progress_;
    LasPageStore store_;
    FileAdder<LasInspection> adder_;
    LasPageOptions options_;

    AddLASFilesModel* model_;
    GridView* grid_;
    LasOptionsWidget* optionGroups_;
    LasOptionsPanel* optionsPanel_ = nullptr;
    LasDetailsPanel* details_;
    QSplitter* splitter_;
    QPushButton* detailColumns_ = nullptr;
    int paneHeight_ = 0;
};

}  // namespace orvex
