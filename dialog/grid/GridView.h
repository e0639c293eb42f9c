#pragma once
#include <QFrame>
#include <QIcon>
#include <memory>
#include <vector>

#include "dialog/grid/GridModel.h"

class QMenu;
class QTableView;

namespace orvex {

class GridFooter;

/// The grid that every page uses: a table with frozen columns at the left, a footer row, sorting by clicking
/// a header (once ascending, twice descending, three times the order of adding), best fit, copying of the
/// selected rows as tab-separated text (Ctrl+C), and a message in the middle while it is empty.
class GridView : public QFrame {
    Q_OBJECT

  public:
    explicit GridView(QWidget* parent = nullptr);
    ~GridView() override;

    /// `model` must outlive the view; null takes it away.
    void SetModel(GridModel* model);
    /// Icons by image index, for the model's icon role.
    void SetIcons(std::vector<QIcon> icons);
    void SetEmptyText(const QString& text);

    /// Shows or hides the columns that are not basic.
    void ShowDetailColumns(bool show);
    bool DetailColumnsShown() const;
    /// Every visible column to its contents (of the rows in sight and a sample of the rest), within its
    /// limits. Columns that cannot be resized keep their width.
    void FitColumns();
    void FitColumn(int column);
    bool IsColumnShown(int column) const;
    int ColumnWidth(int column) const;

    /// Height at which this many rows are in sight, with header, footer and scroll bar.
    int HeightOfRows(int rows) const;

    /// Rows selected, ascending.
    std::vector<int> SelectedRows() const;
    void SelectRows(const std::vector<int>& rows);
    void ClearSelection();
    void SelectAll();
    /// The row with the focus, -1 for none.
    int CurrentRow() const;
    /// Puts the selected rows on the clipboard as tab-separated text of the visible columns.
    void CopySelection(bool withHeaders = true) const;
    /// The commands of the right mouse button.
    QMenu* ContextMenu() const;

    /// The table that scrolls; tests click in it.
    QTableView* Table() const;
    /// The table of the columns that stay; hidden when there are none.
    QTableView* FrozenTable() const;
    /// The row of counts and sums.
    GridFooter* Footer() const;
    /// The message shown while there are no rows; empty otherwise.
    QString ShownMessage() const;
    /// Cells drawn so far; tells what scrolling costs.
    std::size_t CellsPainted() const;

  signals:
    void SelectionChanged();
    void CurrentRowChanged(int row);
    void RemoveRequested();  ///< the Delete key, while rows are selected

  protected:
    void changeEvent(QEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

  private:
    struct Parts;

    void BuildLayout();
    void BuildCommands();
    void JoinScrolling();
    void ConnectSelection();
    void EnableCommands();
    void CycleSort(int column);
    void ArrangePanes();
    void ArrangeRows();
    void ArrangeMessage();
    std::vector<int> SampleRows() const;
    int SearchColumn() const;

    std::unique_ptr<Parts> parts_;
};

}  // namespace orvex
