#pragma once
#include <QIcon>
#include <QWidget>
#include <vector>

#include "dialog/grid/GridModel.h"

class QTableView;

namespace orvex {

/// The grid that every page uses: a table with frozen columns at the left, a footer row, sorting by clicking
/// a header (once ascending, twice descending, three times the order of adding), best fit, copying of the
/// selected rows as tab-separated text (Ctrl+C), and a message in the middle while it is empty.
class GridView : public QWidget {
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
    /// limits.
    void FitColumns();

    /// Rows selected, ascending.
    std::vector<int> SelectedRows() const;
    void SelectRows(const std::vector<int>& rows);
    void ClearSelection();
    void SelectAll();
    /// The row with the focus, -1 for none.
    int CurrentRow() const;
    void CopySelection() const;

    /// The table that scrolls; tests click in it.
    QTableView* Table() const;

  signals:
    void SelectionChanged();
    void CurrentRowChanged(int row);
    void RemoveRequested();  ///< the Delete key

  private:
    struct Parts;
    std::unique_ptr<Parts> parts_;
};

}  // namespace orvex
