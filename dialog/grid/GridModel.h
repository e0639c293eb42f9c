#pragma once
#include <QAbstractTableModel>
#include <QColor>
#include <functional>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "dialog/grid/GridSearchText.h"
#include "dialog/grid/GridSortKeys.h"
#include "support/Column.h"

namespace orvex {

/// Model of every grid: a table of columns, and records stored by a subclass. Rows show the records that the
/// filter keeps, in the current sort order; cells are computed from the record on demand, so that a row costs
/// its record and two indices.
class GridModel : public QAbstractTableModel {
    Q_OBJECT

  public:
    static constexpr int kSortRole = Qt::UserRole + 1;  ///< the typed value
    static constexpr int kIconRole = Qt::UserRole + 2;  ///< index in the dialog's image list, -1 for none

    explicit GridModel(std::vector<GridColumn> columns, QObject* parent = nullptr);

    std::span<const GridColumn> Columns() const { return columns_; }

    int rowCount(const QModelIndex& parent = {}) const override;
    int columnCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role) const override;
    /// Sorts stably by typed value (texts case-insensitively in natural order); column -1 restores the order
    /// of adding. Keys are computed once per call. Records added later are merged in.
    void sort(int column, Qt::SortOrder order = Qt::AscendingOrder) override;
    /// Sort column; -1 in the order of adding.
    int SortColumn() const { return sortColumn_; }
    Qt::SortOrder SortOrder() const { return sortOrder_; }

    /// Shows only the records for which `keeps` is true; empty: all. It is called again for records that are
    /// new or changed. Selection and current row stay with their records where these are still shown. What
    /// `keeps` throws here is thrown on, and nothing has changed; a record for which it throws later is
    /// shown.
    void SetFilter(std::function<bool(std::size_t record)> keeps);
    bool IsFiltered() const { return static_cast<bool>(keeps_); }
    /// All records in the sort order, also those that the filter hides.
    std::vector<std::size_t> RecordsInOrder() const;

    /// Record shown in a row, and row that shows a record.
    std::size_t RecordOfRow(int row) const { return shown_[static_cast<std::size_t>(row)]; }
    /// -1 if there is no such record, or it is hidden.
    int RowOfRecord(std::size_t record) const;
    /// First row from `from` on, wrapping around, whose text in a column starts with `start`
    /// (case-insensitive); -1 if none.
    int FindRow(int column, std::wstring_view start, int from) const;

    /// Number of records, shown or not.
    std::size_t Records() const { return recordCount_; }
    /// Grows with every change of the records; at least 1.
    std::uint64_t Revision() const { return revision_; }
    GridCell Value(std::size_t record, int column) const { return Cell(record, column); }
    /// Text of a cell as shown.
    std::wstring CellText(std::size_t record, int column) const;
    /// Caption of a column, or words for one that shows an icon only.
    std::wstring Heading(int column) const;
    /// The column's texts for searching, read as far as they are not yet known.
    const GridSearchText& SearchText(int column) const;
    /// Reads up to `most` cells of these columns ahead, so that the first search need not. True when there
    /// are more: call it again in idle time.
    bool PrepareSearch(const std::vector<int>& columns, std::size_t most = 4000) const;
    /// Footer cell of the shown records: a count, a sum, or nullopt. Updated once per batch.
    std::optional<std::wstring> FooterText(int column) const;

  signals:
    /// After rows were added, removed or changed; once per batch.
    void RecordsChanged();
    void SortChanged(int column, Qt::SortOrder order);
    /// Around SetFilter.
    void FilterAboutToChange();
    void FilterChanged();

  protected:
    virtual std::size_t RecordCount() const = 0;
    virtual GridCell Cell(std::size_t record, int column) const = 0;
    /// What a cell is sorted by; itself by default.
    virtual GridCell SortValue(std::size_t record, int column) const;
    /// printf-like format of one numeric cell; the column's by default.
    virtual const wchar_t* NumberFormat(std::size_t record, int column) const;
    /// A flag in words.
    virtual std::wstring FlagText(std::size_t record, int column) const;
    virtual int Icon(std::size_t record, int column) const;
    virtual std::wstring Tooltip(std::size_t record, int column) const;
    virtual std::optional<QColor> TextColour(std::size_t record, int column) const;

    /// Brackets an append of `count` records at the end of the subclass's storage; `append` does it and
    /// must not throw.
    void AppendRecords(std::size_t count, const std::function<void()>& append);
    /// Removes records by index (ascending, unique); `remove` erases them from the subclass's storage,
    /// keeping the order. It must not throw.
    void RemoveRecords(const std::vector<std::size_t>& records, const std::function<void()>& remove);
    /// Removes all records; `clear` empties the subclass's storage.
    void ClearRecords(const std::function<void()>& clear);
    /// Gives records other places in the order of adding: `newIndexOfRecord` is a permutation, and
    /// `permuteStorage` moves the subclass's records accordingly. It must not throw.
    void ReorderRecords(const std::vector<std::size_t>& newIndexOfRecord,
                        const std::function<void()>& permuteStorage);
    /// The cells of all records in these columns (ascending) changed.
    void NotifyChanged(const std::vector<int>& columns);

  private:
    struct RowRange {
        int first;
        int last;
    };

    QVariant RoleOf(const QModelIndex& index, int role) const;
    QVariant DisplayValue(std::size_t record, int column, int role) const;
    QVariant Alignment(int column, bool header) const;
    /// "12", or "12 of 3000" while filtered.
    std::wstring CountText(const GridColumn& column) const;
    /// Lets `change` alter the order of the rows (not their number) and tells the views, so that selections
    /// stay with their records; `newIndexOf` if these get other indices.
    void Reorder(const std::function<void()>& change, const std::vector<std::size_t>& newIndexOf = {});
    bool Before(std::uint32_t a, std::uint32_t b) const;
    void SortAll();
    /// The cells of the sort column changed.
    void SortAgain();
    /// Puts the kept records into the sort order.
    void ShowInOrder();
    bool IsKept(std::size_t record) const { return kept_.empty() || kept_[record] != 0; }
    /// Applies the filter to records from one on, without showing or hiding any.
    void FilterFrom(std::size_t firstRecord);
    /// Removes the rows of records that the filter hides and adds those that it shows.
    void ShowKept();
    void AddRows(const std::vector<std::uint32_t>& records);
    /// By record; empty for column -1.
    GridSortKeys KeysOf(int column) const;
    /// The keys of records that were added at the end.
    void AppendKeys(std::size_t firstRecord);
    void AddToSum(int column, std::size_t firstRecord);
    void AddToSums(std::size_t firstRecord);
    void RecomputeSums();
    /// The rows of records that go; when they are too scattered, after moving them to the end.
    std::vector<RowRange> RangesOf(const std::function<bool(std::uint32_t record)>& goes);
    void EraseRows(RowRange range);
    /// Reads on in a column's texts, at most `most`; returns how many.
    std::size_t ReadSearchText(int column, std::size_t most) const;
    /// After these have left the storage.
    void ForgetRecords(const std::vector<std::size_t>& records);

    const std::vector<GridColumn> columns_;
    std::vector<std::uint32_t> order_;               ///< all records in the sort order
    std::vector<std::uint32_t> shown_;               ///< record of each row
    mutable std::vector<int> rows_;                  ///< row of each record, -1 if hidden; empty until needed
    std::size_t recordCount_ = 0;                    ///< in the storage
    std::function<bool(std::size_t record)> keeps_;  ///< empty: no filter
    std::vector<std::uint8_t> kept_;                 ///< by record; empty: no filter
    int sortColumn_ = -1;
    Qt::SortOrder sortOrder_ = Qt::AscendingOrder;
    GridSortKeys keys_;         ///< of the sort column, by record; empty while unsorted
    std::vector<double> sums_;  ///< by column
    std::uint64_t revision_ = 1;
    mutable std::vector<GridSearchText> searchTexts_;  ///< by column, each as far as read
};

}  // namespace orvex
