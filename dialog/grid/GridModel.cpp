#include "dialog/grid/GridModel.h"

#include <QDateTime>
#include <QLocale>
#include <algorithm>
#include <cmath>
#include <numeric>

#include "support/Format.h"
#include "support/LDataError.h"
#include "support/Log.h"
#include "support/QtText.h"

namespace orvex {
namespace {

// Removing many scattered rows one range at a time costs the views a pass over all rows each.
constexpr std::size_t kMostSeparateRanges = 32;

std::wstring DateText(std::int64_t time, const wchar_t* format) {
    const QDateTime local = QDateTime::fromMSecsSinceEpoch(time);
    const QString pattern = QString::fromWCharArray(format);
    return ToWide(pattern.isEmpty() ? QLocale().toString(local, QLocale::ShortFormat)
                                    : local.toString(pattern));
}

bool IsText(const GridColumn& column, HeaderAlign align) {
    return column.kind != CellKind::Number && column.align == align;
}

}  // namespace

GridModel::GridModel(std::vector<GridColumn> columns, QObject* parent)
    : QAbstractTableModel(parent), columns_(std::move(columns)), sums_(columns_.size(), 0.0) {}

int GridModel::rowCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : static_cast<int>(order_.size());
}

int GridModel::columnCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : static_cast<int>(columns_.size());
}

// Views ask while they paint, where an exception would leave them, and the dialog, in the middle of it.
QVariant GridModel::data(const QModelIndex& index, int role) const {
    try {
        return RoleOf(index, role);
    } catch (...) {
        LogWarning(L"A cell cannot be shown: " + CurrentExceptionText());
        return {};
    }
}

QVariant GridModel::RoleOf(const QModelIndex& index, int role) const {
    if (!checkIndex(index, CheckIndexOption::IndexIsValid | CheckIndexOption::ParentIsInvalid)) {
        return {};
    }
    const std::size_t record = RecordOfRow(index.row());
    const int column = index.column();
    switch (role) {
        case Qt::DisplayRole:
        case Qt::AccessibleTextRole:
        case kSortRole:
            return DisplayValue(record, column, role);
        case Qt::TextAlignmentRole:
            return Alignment(column, false);
        case Qt::ToolTipRole:
            return TooltipText(ToQString(Tooltip(record, column)));
        case Qt::ForegroundRole:
            if (const auto colour = TextColour(record, column)) {
                return *colour;
            }
            return {};
        case kIconRole:
            return Icon(record, column);
        default:
            return {};
    }
}

QVariant GridModel::DisplayValue(std::size_t record, int column, int role) const {
    const GridColumn& description = columns_[static_cast<std::size_t>(column)];
    if (role == Qt::DisplayRole && description.kind == CellKind::Flag) {
        return {};
    }
    if (role != kSortRole) {
        return ToQString(CellText(record, column));
    }
    const GridCell cell = Cell(record, column);
    if (const auto* number = std::get_if<double>(&cell)) {
        return *number;
    }
    if (const auto* time = std::get_if<std::int64_t>(&cell)) {
        return static_cast<qlonglong>(*time);
    }
    const auto* text = std::get_if<std::wstring>(&cell);
    return text ? QVariant(ToQString(*text)) : QVariant();
}

QVariant GridModel::Alignment(int column, bool header) const {
    const GridColumn& description = columns_[static_cast<std::size_t>(column)];
    if (description.kind == CellKind::Flag || IsText(description, HeaderAlign::Centre) ||
        (header && description.align == HeaderAlign::Centre)) {
        return static_cast<int>(Qt::AlignCenter);
    }
    const bool right =
        description.align == HeaderAlign::Right || (!header && description.kind == CellKind::Number);
    return static_cast<int>((right ? Qt::AlignRight : Qt::AlignLeft) | Qt::AlignVCenter);
}

QVariant GridModel::headerData(int section, Qt::Orientation orientation, int role) const {
    if (orientation != Qt::Horizontal || section < 0 || section >= columnCount()) {
        return {};
    }
    const GridColumn& column = columns_[static_cast<std::size_t>(section)];
    switch (role) {
        case Qt::DisplayRole:
            return ToQString(Text(column.caption));
        case Qt::AccessibleTextRole:
            return ToQString(Text(column.caption.value ? column.caption : column.tooltip));
        case Qt::ToolTipRole:
            return ToQString(Text(column.tooltip));
        case Qt::TextAlignmentRole:
            return Alignment(section, true);
        case kIconRole:
            return column.headerIcon;
        default:
            return {};
    }
}

std::wstring GridModel::CellText(std::size_t record, int column) const {
    const GridColumn& description = columns_[static_cast<std::size_t>(column)];
    const GridCell cell = Cell(record, column);
    if (const auto* time = std::get_if<std::int64_t>(&cell)) {
        return DateText(*time, description.format);
    }
    const auto* number = std::get_if<double>(&cell);
    if (number != nullptr && description.kind == CellKind::Flag) {
        return *number != 0 ? L"true" : L"false";
    }
    return FormatCell(cell, NumberFormat(record, column));
}

std::optional<std::wstring> GridModel::FooterText(int column) const {
    const GridColumn& description = columns_[static_cast<std::size_t>(column)];
    switch (description.footer) {
        case FooterKind::Count:
            return FormatText(description.footerFormat.value ? Text(description.footerFormat) : L"%d",
                              {order_.size()});
        case FooterKind::Sum:
            return FormatText(description.format, {sums_[static_cast<std::size_t>(column)]});
        case FooterKind::None:
            break;
    }
    return std::nullopt;
}

int GridModel::RowOfRecord(std::size_t record) const {
    if (rows_.empty()) {
        rows_.resize(recordCount_, -1);
        for (std::size_t row = 0; row < order_.size(); ++row) {
            rows_[order_[row]] = static_cast<int>(row);
        }
    }
    return record < rows_.size() ? rows_[record] : -1;
}

int GridModel::FindRow(int column, std::wstring_view start, int from) const {
    const std::wstring wanted = ToUpper(start);
    const int count = rowCount();
    for (int step = 0; step < count; ++step) {
        const int row = (std::max(from, 0) + step) % count;
        const std::wstring text = CellText(RecordOfRow(row), column);
        if (ToUpper(std::wstring_view(text).substr(0, wanted.size())) == wanted) {
            return row;
        }
    }
    return -1;
}

const wchar_t* GridModel::NumberFormat(std::size_t, int column) const {
    const wchar_t* format = columns_[static_cast<std::size_t>(column)].format;
    return *format ? format : L"%g";
}

int GridModel::Icon(std::size_t, int) const {
    return -1;
}

std::wstring GridModel::Tooltip(std::size_t, int) const {
    return {};
}

std::optional<QColor> GridModel::TextColour(std::size_t, int) const {
    return std::nullopt;
}

void GridModel::sort(int column, Qt::SortOrder order) {
    const int wanted = column >= 0 && column < columnCount() ? column : -1;
    keys_ = KeysOf(wanted);
    sortColumn_ = wanted;
    sortOrder_ = order;
    Reorder([this] { SortAll(); });
    emit SortChanged(sortColumn_, sortOrder_);
}

void GridModel::Reorder(const std::function<void()>& change) {
    emit layoutAboutToBeChanged({}, VerticalSortHint);
    const QModelIndexList before = persistentIndexList();
    std::vector<std::uint32_t> records;
    records.reserve(static_cast<std::size_t>(before.size()));
    for (const QModelIndex& index : before) {
        records.push_back(order_[static_cast<std::size_t>(index.row())]);
    }
    change();
    rows_.clear();
    QModelIndexList after;
    after.reserve(before.size());
    for (qsizetype i = 0; i < before.size(); ++i) {
        after.push_back(index(RowOfRecord(records[static_cast<std::size_t>(i)]), before[i].column()));
    }
    changePersistentIndexList(before, after);
    emit layoutChanged({}, VerticalSortHint);
}

bool GridModel::Before(std::uint32_t a, std::uint32_t b) const {
    return keys_.Before(a, b, sortOrder_ == Qt::DescendingOrder);
}

void GridModel::SortAll() {
    std::iota(order_.begin(), order_.end(), 0U);
    if (sortColumn_ >= 0) {
        std::stable_sort(order_.begin(), order_.end(), [this](auto a, auto b) { return Before(a, b); });
    }
}

GridSortKeys GridModel::KeysOf(int column) const {
    GridSortKeys keys;
    if (column < 0) {
        return keys;
    }
    keys.Reserve(order_.size());
    for (std::size_t record = 0; record < order_.size(); ++record) {
        keys.Append(Cell(record, column));
    }
    return keys;
}

void GridModel::AppendKeys(std::size_t firstRecord) {
    try {
        for (std::size_t record = firstRecord; sortColumn_ >= 0 && record < order_.size(); ++record) {
            keys_.Append(Cell(record, sortColumn_));
        }
    } catch (...) {
        // Keys of some rows only would be read beyond their end: the rows stay as they are, unsorted.
        keys_.Clear();
        sortColumn_ = -1;
        emit SortChanged(sortColumn_, sortOrder_);
        throw;
    }
}

void GridModel::AddToSums(std::size_t firstRecord, int firstColumn, int lastColumn) {
    for (int column = firstColumn; column <= lastColumn; ++column) {
        const auto at = static_cast<std::size_t>(column);
        if (columns_[at].footer != FooterKind::Sum) {
            continue;
        }
        for (std::size_t record = firstRecord; record < order_.size(); ++record) {
            const GridCell cell = Cell(record, column);
            const auto* number = std::get_if<double>(&cell);
            sums_[at] += number && std::isfinite(*number) ? *number : 0.0;
        }
    }
}

// Adding up anew rather than taking away keeps a sum free of rounding that was left behind.
void GridModel::RecomputeSums(int firstColumn, int lastColumn) {
    std::fill(sums_.begin() + firstColumn, sums_.begin() + lastColumn + 1, 0.0);
    AddToSums(0, firstColumn, lastColumn);
}

void GridModel::AppendRecords(std::size_t count, const std::function<void()>& append) {
    if (count == 0) {
        return;
    }
    const std::size_t first = order_.size();
    beginInsertRows({}, static_cast<int>(first), static_cast<int>(first + count - 1));
    append();
    order_.resize(first + count);
    std::iota(order_.begin() + static_cast<std::ptrdiff_t>(first), order_.end(),
              static_cast<std::uint32_t>(first));
    rows_.clear();
    recordCount_ = order_.size();
    Q_ASSERT(RecordCount() == recordCount_);
    endInsertRows();

    AppendKeys(first);
    AddToSums(first, 0, columnCount() - 1);
    if (sortColumn_ >= 0) {
        Reorder([this, first] {
            const auto before = [this](auto a, auto b) { return Before(a, b); };
            const auto middle = order_.begin() + static_cast<std::ptrdiff_t>(first);
            std::stable_sort(middle, order_.end(), before);
            std::inplace_merge(order_.begin(), middle, order_.end(), before);
        });
    }
    emit RecordsChanged();
}

void GridModel::EraseRows(RowRange range) {
    order_.erase(order_.begin() + range.first, order_.begin() + range.last + 1);
    rows_.clear();
}

std::vector<GridModel::RowRange> GridModel::RangesToRemove(const std::vector<std::size_t>& records) {
    std::vector<int> rows;
    rows.reserve(records.size());
    std::transform(records.begin(), records.end(), std::back_inserter(rows),
                   [this](std::size_t record) { return RowOfRecord(record); });
    std::sort(rows.begin(), rows.end());
    std::vector<RowRange> ranges;
    for (const int row : rows) {
        if (!ranges.empty() && ranges.back().last + 1 == row) {
            ranges.back().last = row;
        } else {
            ranges.push_back({row, row});
        }
    }
    if (ranges.size() <= kMostSeparateRanges) {
        return ranges;
    }
    Reorder([this, &records] {
        std::stable_partition(order_.begin(), order_.end(), [&records](std::uint32_t record) {
            return !std::binary_search(records.begin(), records.end(), record);
        });
    });
    return {{rowCount() - static_cast<int>(records.size()), rowCount() - 1}};
}

void GridModel::RemoveRecords(const std::vector<std::size_t>& records, const std::function<void()>& remove) {
    if (records.empty()) {
        return;
    }
    // The records stay in the storage, under their numbers, until the last range goes: whoever listens to
    // rows on their way out can still read the others.
    std::vector<RowRange> ranges = RangesToRemove(records);
    for (; ranges.size() > 1; ranges.pop_back()) {
        beginRemoveRows({}, ranges.back().first, ranges.back().last);
        EraseRows(ranges.back());
        endRemoveRows();
    }
    beginRemoveRows({}, ranges.front().first, ranges.front().last);
    EraseRows(ranges.front());
    remove();
    for (std::uint32_t& record : order_) {
        const auto gone = std::lower_bound(records.begin(), records.end(), record) - records.begin();
        record -= static_cast<std::uint32_t>(gone);
    }
    if (sortColumn_ >= 0) {
        keys_.Remove(records);
    }
    recordCount_ = order_.size();
    Q_ASSERT(RecordCount() == recordCount_);
    RecomputeSums(0, columnCount() - 1);
    endRemoveRows();
    emit RecordsChanged();
}

void GridModel::ClearRecords(const std::function<void()>& clear) {
    if (order_.empty()) {
        clear();
        return;
    }
    beginRemoveRows({}, 0, rowCount() - 1);
    clear();
    order_.clear();
    rows_.clear();
    recordCount_ = 0;
    keys_.Clear();
    std::fill(sums_.begin(), sums_.end(), 0.0);
    endRemoveRows();
    emit RecordsChanged();
}

void GridModel::NotifyChanged(int firstColumn, int lastColumn) {
    if (order_.empty()) {
        return;
    }
    RecomputeSums(firstColumn, lastColumn);
    emit dataChanged(index(0, firstColumn), index(rowCount() - 1, lastColumn));
    if (sortColumn_ >= firstColumn && sortColumn_ <= lastColumn) {
        keys_ = KeysOf(sortColumn_);
        // Ties included: equal records stand in the order of adding.
        const bool sorted = std::is_sorted(order_.begin(), order_.end(), [this](auto a, auto b) {
            return Before(a, b) || (a < b && !Before(b, a));
        });
        if (!sorted) {
            Reorder([this] { SortAll(); });
        }
    }
    emit RecordsChanged();
}

}  // namespace orvex
