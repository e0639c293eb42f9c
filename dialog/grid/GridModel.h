#pragma once
#include <QAbstractTableModel>
#include <QColor>
#include <QString>
#include <functional>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "dialog/grid/GridColumn.h"

namespace orvex {

/// The model under every grid: a table of columns, and records that a subclass keeps. Rows show records in
/// the current sort order; cells are computed from the record when asked for, so that a row costs its record
/// and one index.
class GridModel : public QAbstractTableModel {
    Q_OBJECT

  public:
    static constexpr int kSortRole = Qt::UserRole + 1;  ///< the typed value
    static constexpr int kIconRole = Qt::UserRole + 2;  ///< index in the dialog's image list, -1 for none

    explicit GridModel(std::span<const GridColumn> columns, QObject* parent = nullptr);

    std::span<const GridColumn> Columns() const { return columns_; }

    int rowCount(const QModelIndex& parent = {}) const override;
    int columnCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role) const override;
    /// Stable, by typed value (texts without regard to case, with digits in them by value); column -1
    /// restores the order of adding. Keys are computed once per call.
    void sort(int column, Qt::SortOrder order) override;

    /// The record shown in a row and the row that shows a record.
    std::size_t RecordOfRow(int row) const { return order_[static_cast<std::size_t>(row)]; }
    int RowOfRecord(std::size_t record) const;

    /// The text of a cell as shown.
    std::wstring CellText(std::size_t record, int column) const;
    /// Footer cell: a count, a sum, or nothing. Kept up to date incrementally per batch.
    std::optional<std::wstring> FooterText(int column) const;

  signals:
    /// After rows were added, removed or changed; once per batch.
    void RecordsChanged();

  protected:
    virtual std::size_t RecordCount() const = 0;
    virtual GridCell Cell(std::size_t record, int column) const = 0;
    /// printf-like format of one number cell; the column's by default.
    virtual const wchar_t* NumberFormat(std::size_t record, int column) const;
    virtual int Icon(std::size_t record, int column) const;
    virtual std::wstring Tooltip(std::size_t record, int column) const;
    virtual std::optional<QColor> TextColour(std::size_t record, int column) const;

    /// Brackets an append of `count` records at the end of the subclass's storage; `append` does it.
    void AppendRecords(std::size_t count, const std::function<void()>& append);
    /// Removes records by index (ascending, unique); `remove` erases them from the subclass's storage,
    /// keeping the order.
    void RemoveRecords(const std::vector<std::size_t>& records, const std::function<void()>& remove);
    /// Empties everything; `clear` empties the subclass's storage.
    void ClearRecords(const std::function<void()>& clear);
    /// The cells of all records in these columns changed.
    void NotifyChanged(int firstColumn, int lastColumn);

  private:
    std::span<const GridColumn> columns_;
    std::vector<std::uint32_t> order_;
};

}  // namespace orvex
