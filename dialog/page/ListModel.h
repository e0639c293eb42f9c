#pragma once
#include <algorithm>
#include <functional>
#include <iterator>
#include <span>
#include <string_view>
#include <utility>
#include <vector>

#include "dialog/grid/GridModel.h"
#include "dialog/page/RowTraits.h"
#include "support/FileTableCsv.h"
#include "support/ProgressIf.h"

namespace orvex {

/// The rows of a page, whatever their type.
class ListRows : public GridModel {
  public:
    using GridModel::GridModel;

    virtual std::size_t Count() const = 0;
    /// Of rows that are not those of files: nothing.
    virtual RowTraits Traits(std::size_t record) const = 0;
    /// Everything that is odd about a file, worst first.
    virtual std::vector<Finding> Findings(std::size_t record) const = 0;
    /// Writes records as a table of files, in the order given, up to the first that `out` refuses; `kind`: of
    /// their data. False if `progress` was cancelled before the end.
    virtual bool WriteCsv(std::ostream& out, std::span<const std::size_t> records, const char* kind,
                          Kst::ProgressIf& progress) const = 0;
    /// Removes records by index, in any order, and frees what they hold.
    virtual void Remove(std::vector<std::size_t> records) = 0;
    virtual void Clear() = 0;
};

/// Rows of one type (movable) with the columns that show them. A record's index is the order of adding.
template <typename Row>
class ListModel : public ListRows {
  public:
    /// `columns` outlives the model.
    explicit ListModel(std::span<const Column<Row>> columns, QObject* parent = nullptr)
        : ListRows({columns.begin(), columns.end()}, parent), cells_(columns) {}

    const std::vector<Row>& Rows() const { return rows_; }
    std::size_t Count() const override { return rows_.size(); }

    RowTraits Traits([[maybe_unused]] std::size_t record) const override {
        if constexpr (FileRow<Row>) {
            return TraitsOf(rows_[record]);
        } else {
            return {};
        }
    }

    std::vector<Finding> Findings([[maybe_unused]] std::size_t record) const override {
        if constexpr (FileRow<Row>) {
            const auto& findings = rows_[record].findings;
            return {findings.begin(), findings.end()};
        } else {
            return {};
        }
    }

    bool WriteCsv([[maybe_unused]] std::ostream& out, [[maybe_unused]] std::span<const std::size_t> records,
                  [[maybe_unused]] const char* kind,
                  [[maybe_unused]] Kst::ProgressIf& progress) const override {
        if constexpr (FileRow<Row>) {
            return WriteFileTable(out, records, kind, progress);
        } else {
            return true;
        }
    }

    void Append(std::vector<Row> batch) {
        AppendRecords(batch.size(), [&] { std::ranges::move(batch, std::back_inserter(rows_)); });
    }

    void Remove(std::vector<std::size_t> records) override {
        std::ranges::sort(records);
        records.erase(std::unique(records.begin(), records.end()), records.end());
        RemoveRecords(records, [&] {
            std::size_t index = 0;
            auto next = records.begin();
            std::erase_if(rows_, [&](const Row&) {
                const bool remove = next != records.end() && *next == index++;
                next += remove ? 1 : 0;
                return remove;
            });
        });
    }

    void Clear() override {
        ClearRecords([this] { rows_.clear(); });
    }

    /// Gives rows other places in the order of adding: row `r` becomes row `newIndexOf[r]`, a permutation.
    void Permute(const std::vector<std::size_t>& newIndexOf) {
        std::vector<Row> moved(rows_.size());
        ReorderRecords(newIndexOf, [&] {
            for (std::size_t i = 0; i < rows_.size(); ++i) {
                moved[newIndexOf[i]] = std::move(rows_[i]);
            }
            rows_.swap(moved);
        });
    }

    /// Changes rows without adding or removing any; tells the views even when `change` throws. `columns`: the
    /// names of those that show what changed; empty: all.
    void Change(const std::function<void(std::vector<Row>&)>& change,
                std::span<const std::string_view> columns = {}) {
        const std::vector<int> changed = ColumnsNamed(columns);
        try {
            change(rows_);
        } catch (...) {
            NotifyChanged(changed);
            throw;
        }
        NotifyChanged(changed);
    }

  protected:
    std::size_t RecordCount() const override { return rows_.size(); }

    GridCell Cell(std::size_t record, int column) const override { return At(column).cell(rows_[record]); }

    GridCell SortValue(std::size_t record, int column) const override {
        const auto order = At(column).look.order;
        return order == nullptr ? Cell(record, column) : order(rows_[record]);
    }

    const wchar_t* NumberFormat(std::size_t record, int column) const override {
        return orvex::NumberFormat(At(column), rows_[record]);
    }

    int Icon(std::size_t record, int column) const override {
        return At(column).look.icon == nullptr ? -1 : At(column).look.icon(rows_[record]);
    }

    std::wstring FlagText(std::size_t record, int column) const override {
        const auto words = At(column).look.words;
        return words == nullptr ? GridModel::FlagText(record, column) : words(rows_[record]);
    }

    std::wstring Tooltip(std::size_t record, int column) const override {
        const auto tooltip = At(column).look.tooltip;
        return tooltip == nullptr ? LooseCellText(At(column), rows_[record]) : tooltip(rows_[record]);
    }

    std::optional<QColor> TextColour(std::size_t record, int column) const override {
        const auto colour = At(column).look.colour;
        const auto value = colour == nullptr ? std::nullopt : colour(rows_[record]);
        return value ? std::optional(QColor::fromRgb(QRgb{*value})) : std::nullopt;
    }

  private:
    std::vector<int> ColumnsNamed(std::span<const std::string_view> names) const {
        std::vector<int> columns;
        for (std::size_t i = 0; i < cells_.size(); ++i) {
            if (names.empty() || std::ranges::find(names, cells_[i].name) != names.end()) {
                columns.push_back(static_cast<int>(i));
            }
        }
        return columns;
    }

    const Column<Row>& At(int column) const { return cells_[static_cast<std::size_t>(column)]; }

    bool WriteFileTable(std::ostream& out, std::span<const std::size_t> records, const char* kind,
                        Kst::ProgressIf& progress) const {
        std::vector<Column<Row>> columns;
        std::ranges::copy_if(cells_, std::back_inserter(columns), IsInFileTable);
        std::vector<std::string_view> names;
        std::ranges::transform(columns, std::back_inserter(names), &Column<Row>::name);
        FileTableCsv table(out, names);
        progress.SetRange(records.size());
        // Handling events would hide why a file was refused.
        for (std::size_t done = 0; done < records.size() && out; progress.SetPosition(++done)) {
            if (progress.IsCancelled()) {
                return false;
            }
            const Row& row = rows_[records[done]];
            table.BeginFile({row.path, kind, row.loadable, row.summary, FindingLines(row.findings)});
            for (const Column<Row>& column : columns) {
                table.Cell(ExactText(column, row));
            }
            table.EndFile();
        }
        return true;
    }

    std::span<const Column<Row>> cells_;
    std::vector<Row> rows_;
};

}  // namespace orvex
