#pragma once
#include <functional>
#include <span>
#include <string>
#include <vector>

#include "dialog/Images.h"
#include "dialog/details/DetailsPanel.h"
#include "dialog/page/AddFilesPage.h"
#include "dialog/page/Options.h"
#include "support/HelpViewer.h"
#include "support/UserPrompts.h"

class QHBoxLayout;
class QKeySequence;
class QPushButton;
class QSplitter;

namespace orvex {

class GridView;
class ListRows;
class ListStatus;
class OptionForm;
class OptionsPanel;
class RowFinder;
class RowMenu;

/// What differs between pages that show a list. Ids are those of controls: a widget is named "c" and its id;
/// a button with id 0 is not there. Texts that are the same on all pages have their values here already.
struct ListPageDescription {
    struct Button {
        int id = 0;
        StringId caption = {};  ///< 0: the button shows its image only
        StringId tooltip = {};
        bool opensMenu = false;  ///< says so; with a caption
    };

    int listCaptionId = 0;
    StringId listCaption = {};  ///< above the grid; 0: the buttons begin at the left
    int gridId = 0;
    StringId emptyText = {};  ///< in the empty grid
    Button remove = {0, text::kRemove, text::kRemoveTooltip};
    Button clear = {0, text::kClear, text::kClearTooltip};
    Button detailColumns = {0, {}, text::kDetailColumnsTooltip};
    Button selectAll = {0, {}, text::kSelectAllTooltip};
    Button help = {0, {}, text::kHelpTooltip};
    HelpTopic helpTopic = HelpTopic::LasFiles;
    bool helpExplainsControls = false;  ///< the help button starts What's This mode; else it opens the topic

    const char* splitterName = "";         ///< object name of the splitter between grid and details
    const wchar_t* paneStateName = L"";    ///< under which the details pane's state is stored
    const wchar_t* columnStateName = L"";  ///< the same of the columns' widths and order
    const char* kind = "";                 ///< of the data, in exported lists
    std::vector<DetailsTab> detailsTabs;
    StringId nothingSelected = text::kDetailsNoSelection;  ///< in the first tab

    OptionTable options;
};

/// The field of a folder and the buttons beside it, by control id.
struct FolderField {
    int field;
    int browse;
    int insertToken;  ///< puts the token of the project's folder at the head
    StringId browseTitle;
    std::wstring AddFilesParams::*folder;  ///< the field's option
};

/// What every page with a list shares: the row of buttons, the grid, the details pane that folds, the form of
/// options, and what is enabled when.
class ListPage : public AddFilesPage {
    Q_OBJECT

  public:
    ~ListPage() override;

    bool ValidateAndStore() override;
    void Release() override;
    bool HasRows() const override;

    /// Selects rows by record and scrolls to the first. The filter goes when it hides one of them.
    void SelectRecords(std::span<const std::size_t> records) override;

  protected:
    enum class Usable { Always, WhenIdle, WithRows, WithSelection };
    /// One button above the grid.
    struct PageButton {
        ListPageDescription::Button texts;
        ButtonImage image;
        Usable usable;
        const wchar_t* handler;  ///< named when it fails
        std::function<void()> press;
    };

    /// `description` must outlive the page.
    ListPage(const PageContext& context, const ListPageDescription& description, QWidget* parent);

    /// The last step of a page's constructor: loads the options and shows the rows, which outlive the grid.
    void Start(ListRows& rows);
    /// For the destructor of a page whose rows end before the grid: nothing shows them from here on.
    void Detach();

    const DialogServices& Services() const { return services_; }
    AddFilesParams& Params() const { return params_; }
    DialogProgress& Progress() const { return progress_; }
    GridView& Grid() const { return *grid_; }
    const DetailsPanel& DetailsPane() const { return *details_; }
    OptionForm& Form() const { return *form_; }
    ListStatus& Status() const;
    /// The options as the controls show them.
    const AddFilesParams& Chosen() const;
    /// Record indices of the selected rows, in the order of the grid.
    std::vector<std::size_t> SelectedRecords() const;
    void ShowMessage(std::wstring text, StringId caption, PromptIcon icon) const;
    void OnClick(int id, const wchar_t* handler, std::function<void()> press);
    void ConnectFolder(const FolderField& folder);

    /// Brings everything up to date after rows, or options on which they depend, have changed.
    void Update();
    void ShowDetails();
    void EnableItems();
    void FitColumns();

    /// Takes over the numbers that were typed. False when one is refused, after telling the user.
    bool ReadNumbers();
    /// Saves the options in the order of their table. Numbers are read on the way; false when one is refused,
    /// after telling the user: those before it are saved. `isSaved`: of the rows that are; empty: all.
    bool SaveOptions(const std::function<bool(const OptionRow& row)>& isSaved = {});
    /// Writes the options into the record.
    void WriteOptions() const;

    /// The buttons above the grid, from left to right.
    virtual std::vector<PageButton> Buttons();
    /// The user removes these, which are still there.
    virtual void BeforeRemoval(std::span<const std::size_t> /*records*/) {}
    /// All rows have been removed at once.
    virtual void Cleared() {}
    /// Rows have been added, removed or read again: recompute what depends on all of them.
    virtual void RowsChanged() {}
    /// The details pane's content for these records; there is at least one.
    virtual DetailsContent Details(std::span<const std::size_t> records) const = 0;
    /// ValidateAndStore, within its guard.
    virtual bool Store() = 0;

    void resizeEvent(QResizeEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;

  private:
    void AddShortcut(const QKeySequence& key, const wchar_t* handler, std::function<void()> press);
    void MakeButtonRow();
    QPushButton* MakeDetailColumnsButton();
    void MakeGrid();
    void MakeForm();
    void ConnectGrid();
    void ConnectPane();

    void OnRemove();
    void RemoveRecords(std::vector<std::size_t> records);
    void OnClear();
    void RemoveAll();
    void OnDetailColumns();
    void OnHelp();
    void OnBrowseFolder(const FolderField& folder);
    void OnInsertProjectPath(const FolderField& folder);
    void ArrangePane();
    void RestorePane();
    void SavePane() const;
    void RestoreColumns();
    void SaveColumns() const;
    bool ReadNumber(const OptionRow& row);
    bool CanUse(Usable usable) const;

    DialogServices services_;
    AddFilesParams& params_;
    DialogProgress& progress_;
    const ListPageDescription& description_;

    ListRows* rows_ = nullptr;  ///< null before Start and after Detach
    std::vector<PageButton> buttons_;
    GridView* grid_;
    DetailsPanel* details_;
    RowFinder* finder_;
    RowMenu* rowMenu_;
    QSplitter* splitter_;
    OptionForm* form_;
    OptionsPanel* optionsPanel_;
    QPushButton* detailColumns_ = nullptr;
    int paneHeight_ = 0;
};

}  // namespace orvex
