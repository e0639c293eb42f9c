#pragma once
#include <algorithm>
#include <functional>
#include <utility>

#include "dialog/page/FileRows.h"

namespace orvex {

/// The storage of a file page's rows. `RowType` has a member `inspection` (movable, with the `path` of its
/// file) and is default-constructed otherwise; a record's index is the order of adding. A page's model
/// derives and gives columns, cells, icons and tooltips.
template <typename RowType>
class FileRowsModel : public FileRows {
  public:
    using Row = RowType;
    using Inspection = decltype(Row::inspection);
    using FileRows::FileRows;

    const std::vector<Row>& Rows() const { return rows_; }
    std::size_t Count() const override { return rows_.size(); }

    std::vector<std::wstring> Paths() const override {
        std::vector<std::wstring> paths;
        paths.reserve(rows_.size());
        for (const Row& row : rows_) {
            paths.push_back(row.inspection.path);
        }
        return paths;
    }

    std::unordered_set<std::wstring> PathKeys() const override {
        std::unordered_set<std::wstring> keys;
        keys.reserve(rows_.size());
        for (const Row& row : rows_) {
            keys.insert(PathKey(row.inspection.path));
        }
        return keys;
    }

    void Append(std::vector<Inspection> batch) {
        AppendRecords(batch.size(), [&] {
            for (Inspection& inspection : batch) {
                rows_.emplace_back().inspection = std::move(inspection);
            }
        });
    }

    void Remove(std::vector<std::size_t> records) override {
        std::sort(records.begin(), records.end());
        records.erase(std::unique(records.begin(), records.end()), records.end());
        RemoveRecords(records, [&] {
            std::size_t index = 0;
            auto next = records.begin();
            std::erase_if(rows_, [&](const Row&) {
                const bool remove = next != records.end() && *next == index;
                next += remove ? 1 : 0;
                ++index;
                return remove;
            });
        });
    }

    void Clear() override {
        ClearRecords([this] { rows_.clear(); });
    }

    /// Changes rows without adding or removing any; tells the views even when `change` throws.
    void Change(const std::function<void(std::vector<Row>&)>& change) {
        struct Notifier {
            FileRowsModel& model;
            ~Notifier() { model.NotifyChanged(0, static_cast<int>(model.Columns().size()) - 1); }
        };
        const Notifier notifier{*this};
        change(rows_);
    }

  protected:
    std::size_t RecordCount() const override { return rows_.size(); }

  private:
    std::vector<Row> rows_;
};

}  // namespace orvex
