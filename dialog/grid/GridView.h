#pragma once
#include <QFrame>
#include <QIcon>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "dialog/grid/GridModel.h"

class QMenu;
class QTableView;

namespace orvex {

class GridFooter;
class UserPrompts;

/// Grid used by every page: a table with frozen columns at the left, a footer row, sorting by header clicks
/// (ascending, descending, order of adding), best fit, copying of the selected rows as tab-separated text
/// (Ctrl+C), and a centred message while it is empty.
class GridView : public QFrame {
    Q_OBJECT

  public:
    /// `prompts` tells of a handler that failed; it outlives the view.
    explicit GridView(UserPrompts& prompts, QWidget* parent = nullptr);
    ~GridView() override;

    /// `model` must outlive the view; null removes it.
    void SetModel(GridModel* model);
    /// Icons by image index, for the model's icon role.
    void SetIcons(std::vector<QIcon> icons);
    void SetEmptyText(const QString& text);

    /// Shows or hides the columns that are not basic.
    void ShowDetailColumns(bool show);
    bool DetailColumnsShown() const;
    /// Fits every visible column to its contents (of the visible rows and a sample of the rest), within its
    /// limits. Columns that cannot be resized, or whose width the user has set, keep their width; without
    /// rows columns have the width that is given.
    void FitColumns();
    void FitColumn(int column);
    /// Fits all visible columns and forgets the widths that the user has set.
    void RefitColumns();
    /// The user's choices (widths, columns shown or hidden) and the sort order, by column name.
    std::string SaveState() const;
    /// A state that is damaged or of other columns changes nothing.
    void RestoreState(const std::string& state);
    /// Context menu of the header, made anew: the columns, fit, reset.
    QMenu* HeaderMenu() const;
    bool IsColumnShown(int column) const;
    /// From left to right.
    std::vector<int> ShownColumns() const;
    int ColumnWidth(int column) const;

    /// Height in pixels for this many visible rows, with header, footer and scroll bar.
    int HeightOfRows(int rows) const;

    /// Selected rows, ascending.
    std::vector<int> SelectedRows() const;
    void SelectRows(const std::vector<int>& rows);
    void ClearSelection();
    void SelectAll();
    /// Lets `remove` remove the selected records. Then the row that followed them is selected and current; at
    /// the end, the one before.
    void RemoveSelection(const std::function<void(const std::vector<std::size_t>& records)>& remove);
    /// Focused row; -1 if none.
    int CurrentRow() const;
    /// Copies the visible columns of the selected rows to the clipboard as tab-separated text.
    void CopySelection(bool withHeaders = true) const;
    /// Context menu of the rows.
    QMenu* ContextMenu() const;

    /// The scrolling table; exposed for tests.
    QTableView* Table() const;
    /// The table of the frozen columns; hidden if there are none.
    QTableView* FrozenTable() const;
    /// The footer row.
    GridFooter* Footer() const;
    /// Message shown while there are no rows; otherwise empty.
    QString ShownMessage() const;
    /// Number of cells drawn so far, to measure scrolling.
    std::size_t CellsPainted() const;

  signals:
    void SelectionChanged();
    void CurrentRowChanged(int row);
    void RemoveRequested();    ///< the Delete key, while rows are selected
    void ActivateRequested();  ///< Return, Enter or a double click on a row

  protected:
    void changeEvent(QEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

  private:
    struct Parts;

    void BuildLayout();
    void BuildCommands();
    void JoinScrolling();
    void ConnectSelection();
    void ConnectFilter();
    std::optional<std::size_t> CurrentRecord() const;
    void EnableCommands();
    void CycleSort(int column);
    void ArrangePanes();
    void ArrangeRows();
    void ArrangeMessage();
    void ConnectColumns();
    int SearchColumn() const;

    std::unique_ptr<Parts> parts_;
};

}  // namespace orvex
