// The rows of a grid: their order, the filter, and how records come and go.
#include <algorithm>
#include <cmath>
#include <numeric>

#include "dialog/grid/GridModel.h"
#include "support/LDataError.h"
#include "support/Log.h"

namespace orvex {
namespace {

// Removing many scattered rows one range at a time costs the views a pass over all rows each.
constexpr std::size_t kMostSeparateRanges = 32;

}  // namespace

int GridModel::RowOfRecord(std::size_t record) const {
    if (rows_.empty()) {
        rows_.resize(recordCount_, -1);
        for (std::size_t row = 0; row < shown_.size(); ++row) {
            rows_[shown_[row]] = static_cast<int>(row);
        }
    }
    return record < rows_.size() ? rows_[record] : -1;
}

std::vector<std::size_t> GridModel::RecordsInOrder() const {
    return {order_.begin(), order_.end()};
}

void GridModel::sort(int column, Qt::SortOrder order) {
    const int wanted = column >= 0 && column < columnCount() ? column : -1;
    keys_ = KeysOf(wanted);
    sortColumn_ = wanted;
    sortOrder_ = order;
    Reorder([this] { SortAll(); });
    emit SortChanged(sortColumn_, sortOrder_);
}

void GridModel::Reorder(const std::function<void()>& change, const std::vector<std::size_t>& newIndexOf) {
    emit layoutAboutToBeChanged({}, VerticalSortHint);
    const QModelIndexList before = persistentIndexList();
    std::vector<std::size_t> records;
    records.reserve(static_cast<std::size_t>(before.size()));
    for (const QModelIndex& index : before) {
        const std::size_t record = RecordOfRow(index.row());
        records.push_back(newIndexOf.empty() ? record : newIndexOf[record]);
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
        keys_.Prepare();
        std::stable_sort(order_.begin(), order_.end(), [this](auto a, auto b) { return Before(a, b); });
    }
    ShowInOrder();
}

void GridModel::ShowInOrder() {
    shown_.clear();
    std::copy_if(order_.begin(), order_.end(), std::back_inserter(shown_),
                 [this](std::uint32_t record) { return IsKept(record); });
}

GridSortKeys GridModel::KeysOf(int column) const {
    GridSortKeys keys;
    if (column < 0) {
        return keys;
    }
    keys.Reserve(recordCount_);
    for (std::size_t record = 0; record < recordCount_; ++record) {
        keys.Append(SortValue(record, column));
    }
    return keys;
}

void GridModel::AppendKeys(std::size_t firstRecord) {
    try {
        for (std::size_t record = firstRecord; sortColumn_ >= 0 && record < recordCount_; ++record) {
            keys_.Append(SortValue(record, sortColumn_));
        }
    } catch (...) {
        // Keys of some rows only would be read beyond their end: the rows stay as they are, unsorted.
        keys_.Clear();
        sortColumn_ = -1;
        emit SortChanged(sortColumn_, sortOrder_);
        throw;
    }
}

void GridModel::AddToSum(int column, std::size_t firstRecord) {
    const auto at = static_cast<std::size_t>(column);
    for (std::size_t record = firstRecord; columns_[at].footer == FooterKind::Sum && record < recordCount_;
         ++record) {
        if (IsKept(record)) {
            const GridCell cell = Cell(record, column);
            const auto* number = std::get_if<double>(&cell);
            sums_[at] += number && std::isfinite(*number) ? *number : 0.0;
        }
    }
}

void GridModel::AddToSums(std::size_t firstRecord) {
    for (int column = 0; column < columnCount(); ++column) {
        AddToSum(column, firstRecord);
    }
}

// Adding up anew rather than taking away keeps a sum free of rounding that was left behind.
void GridModel::RecomputeSums() {
    std::fill(sums_.begin(), sums_.end(), 0.0);
    AddToSums(0);
}

void GridModel::SetFilter(std::function<bool(std::size_t record)> keeps) {
    if (!keeps && !keeps_) {
        return;
    }
    std::vector<std::uint8_t> kept(keeps ? recordCount_ : 0);
    for (std::size_t record = 0; record < kept.size(); ++record) {
        kept[record] = keeps(record) ? 1 : 0;
    }
    emit FilterAboutToChange();
    keeps_ = std::move(keeps);
    kept_ = std::move(kept);
    ShowKept();
    RecomputeSums();
    emit FilterChanged();
    emit RecordsChanged();
}

void GridModel::FilterFrom(std::size_t firstRecord) {
    if (!keeps_) {
        return;
    }
    kept_.resize(firstRecord);
    try {
        for (std::size_t record = firstRecord; record < recordCount_; ++record) {
            kept_.push_back(keeps_(record) ? 1 : 0);
        }
    } catch (...) {
        LogWarning(L"Rows cannot be filtered and are shown: " + CurrentExceptionText());
        kept_.resize(recordCount_, 1);
    }
}

void GridModel::ShowKept() {
    const auto ranges = RangesOf([this](std::uint32_t record) { return !IsKept(record); });
    for (auto range = ranges.rbegin(); range != ranges.rend(); ++range) {
        beginRemoveRows({}, range->first, range->last);
        EraseRows(*range);
        endRemoveRows();
    }
    std::vector<std::uint32_t> added;
    std::copy_if(order_.begin(), order_.end(), std::back_inserter(added),
                 [this](std::uint32_t record) { return IsKept(record) && RowOfRecord(record) < 0; });
    const bool wasEmpty = shown_.empty();
    if (!added.empty()) {
        AddRows(added);
        if (!wasEmpty) {
            Reorder([this] { ShowInOrder(); });
        }
    }
}

void GridModel::AddRows(const std::vector<std::uint32_t>& records) {
    if (records.empty()) {
        return;
    }
    beginInsertRows({}, rowCount(), rowCount() + static_cast<int>(records.size()) - 1);
    shown_.insert(shown_.end(), records.begin(), records.end());
    rows_.clear();
    endInsertRows();
}

void GridModel::AppendRecords(std::size_t count, const std::function<void()>& append) {
    if (count == 0) {
        return;
    }
    const std::size_t first = recordCount_;
    order_.resize(first + count);
    std::iota(order_.begin() + static_cast<std::ptrdiff_t>(first), order_.end(),
              static_cast<std::uint32_t>(first));
    append();
    recordCount_ = order_.size();
    Q_ASSERT(RecordCount() == recordCount_);
    ++revision_;
    rows_.clear();
    FilterFrom(first);
    std::vector<std::uint32_t> added;
    std::copy_if(order_.begin() + static_cast<std::ptrdiff_t>(first), order_.end(), std::back_inserter(added),
                 [this](std::uint32_t record) { return IsKept(record); });
    AddRows(added);

    AppendKeys(first);
    AddToSums(first);
    if (sortColumn_ >= 0) {
        Reorder([this, first] {
            const auto before = [this](auto a, auto b) { return Before(a, b); };
            const auto middle = order_.begin() + static_cast<std::ptrdiff_t>(first);
            std::stable_sort(middle, order_.end(), before);
            std::inplace_merge(order_.begin(), middle, order_.end(), before);
            ShowInOrder();
        });
    }
    emit RecordsChanged();
}

void GridModel::EraseRows(RowRange range) {
    shown_.erase(shown_.begin() + range.first, shown_.begin() + range.last + 1);
    rows_.clear();
}

std::vector<GridModel::RowRange> GridModel::RangesOf(const std::function<bool(std::uint32_t)>& goes) {
    std::vector<RowRange> ranges;
    int count = 0;
    for (int row = 0; row < rowCount(); ++row) {
        if (!goes(shown_[static_cast<std::size_t>(row)])) {
            continue;
        }
        ++count;
        if (!ranges.empty() && ranges.back().last + 1 == row) {
            ranges.back().last = row;
        } else {
            ranges.push_back({row, row});
        }
    }
    if (ranges.size() <= kMostSeparateRanges) {
        return ranges;
    }
    Reorder([this, &goes] { std::stable_partition(shown_.begin(), shown_.end(), std::not_fn(goes)); });
    return {{rowCount() - count, rowCount() - 1}};
}

void GridModel::RemoveRecords(const std::vector<std::size_t>& records, const std::function<void()>& remove) {
    if (records.empty()) {
        return;
    }
    // The records stay in the storage, under their numbers, until the last range goes: whoever listens to
    // rows on their way out can still read the others.
    std::vector<RowRange> ranges = RangesOf([&records](std::uint32_t record) {
        return std::binary_search(records.begin(), records.end(), record);
    });
    for (; ranges.size() > 1; ranges.pop_back()) {
        beginRemoveRows({}, ranges.back().first, ranges.back().last);
        EraseRows(ranges.back());
        endRemoveRows();
    }
    if (!ranges.empty()) {
        beginRemoveRows({}, ranges.front().first, ranges.front().last);
        EraseRows(ranges.front());
    }
    remove();
    ForgetRecords(records);
    RecomputeSums();
    if (!ranges.empty()) {
        endRemoveRows();
    }
    emit RecordsChanged();
}

void GridModel::ForgetRecords(const std::vector<std::size_t>& records) {
    std::erase_if(order_, [&records](std::uint32_t record) {
        return std::binary_search(records.begin(), records.end(), record);
    });
    for (std::vector<std::uint32_t>* list : {&order_, &shown_}) {
        for (std::uint32_t& record : *list) {
            const auto gone = std::lower_bound(records.begin(), records.end(), record) - records.begin();
            record -= static_cast<std::uint32_t>(gone);
        }
    }
    if (sortColumn_ >= 0) {
        keys_.Remove(records);
    }
    EraseAt(kept_, records);
    for (GridSearchText& texts : searchTexts_) {
        texts.Remove(records);
    }
    ++revision_;
    recordCount_ = order_.size();
    rows_.clear();
    Q_ASSERT(RecordCount() == recordCount_);
}

void GridModel::ClearRecords(const std::function<void()>& clear) {
    if (recordCount_ == 0) {
        clear();
        return;
    }
    const bool hasRows = !shown_.empty();
    if (hasRows) {
        beginRemoveRows({}, 0, rowCount() - 1);
    }
    clear();
    order_.clear();
    shown_.clear();
    kept_.clear();
    rows_.clear();
    recordCount_ = 0;
    keys_.Clear();
    searchTexts_.assign(columns_.size(), {});
    ++revision_;
    std::fill(sums_.begin(), sums_.end(), 0.0);
    if (hasRows) {
        endRemoveRows();
    }
    emit RecordsChanged();
}

void GridModel::ReorderRecords(const std::vector<std::size_t>& newIndexOfRecord,
                               const std::function<void()>& permuteStorage) {
    GridSortKeys keys = keys_;
    std::vector<std::uint8_t> kept = kept_;
    std::vector<GridSearchText> texts(columns_.size());  // not kept: this is rare
    keys.Permute(newIndexOfRecord);
    Permute(kept, newIndexOfRecord);
    Reorder(
        [&] {
            permuteStorage();
            keys_ = std::move(keys);
            kept_ = std::move(kept);
            searchTexts_ = std::move(texts);
            ++revision_;
            SortAll();
        },
        newIndexOfRecord);
    emit RecordsChanged();
}

void GridModel::NotifyChanged(const std::vector<int>& columns) {
    if (recordCount_ == 0 || columns.empty()) {
        return;
    }
    ++revision_;
    for (const int column : columns) {
        searchTexts_[static_cast<std::size_t>(column)] = {};
        sums_[static_cast<std::size_t>(column)] = 0;
    }
    FilterFrom(0);
    ShowKept();
    if (!shown_.empty()) {
        emit dataChanged(index(0, columns.front()), index(rowCount() - 1, columns.back()));
    }
    for (const int column : columns) {
        if (column == sortColumn_) {
            SortAgain();
        }
        if (!keeps_) {
            AddToSum(column, 0);
        }
    }
    if (keeps_) {  // other records may be shown
        RecomputeSums();
    }
    emit RecordsChanged();
}

void GridModel::SortAgain() {
    keys_ = KeysOf(sortColumn_);
    // Ties included: equal records stand in the order of adding.
    const bool sorted = std::is_sorted(order_.begin(), order_.end(), [this](auto a, auto b) {
        return Before(a, b) || (a < b && !Before(b, a));
    });
    if (!sorted) {
        Reorder([this] { SortAll(); });
    }
}

}  // namespace orvex
