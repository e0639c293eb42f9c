#include "las/AddLASFilesModel.h"

#include <algorithm>
#include <iterator>

#include "las/LasCells.h"

namespace orvex {

AddLASFilesModel::AddLASFilesModel(QObject* parent) : GridModel(LasColumns(), parent) {}

std::unordered_set<std::wstring> AddLASFilesModel::PathKeys() const {
    std::unordered_set<std::wstring> keys;
    keys.reserve(rows_.size());
    for (const LasRow& row : rows_) {
        keys.insert(PathKey(row.inspection.path));
    }
    return keys;
}

void AddLASFilesModel::Append(std::vector<LasInspection> batch) {
    AppendRecords(batch.size(), [&] {
        for (LasInspection& inspection : batch) {
            rows_.push_back({std::move(inspection), {}, false, 0});
        }
    });
}

void AddLASFilesModel::Remove(std::vector<std::size_t> records) {
    std::sort(records.begin(), records.end());
    records.erase(std::unique(records.begin(), records.end()), records.end());
    RemoveRecords(records, [&] {
        std::size_t index = 0;
        auto next = records.begin();
        std::erase_if(rows_, [&](const LasRow&) {
            const bool remove = next != records.end() && *next == index;
            next += remove ? 1 : 0;
            ++index;
            return remove;
        });
    });
}

void AddLASFilesModel::Clear() {
    ClearRecords([this] { rows_.clear(); });
}

void AddLASFilesModel::Change(const std::function<void(std::vector<LasRow>&)>& change) {
    struct Notifier {
        AddLASFilesModel& model;
        ~Notifier() { model.NotifyChanged(0, kLasColumnCount - 1); }
    };
    const Notifier notifier{*this};
    change(rows_);
}

GridCell AddLASFilesModel::Cell(std::size_t record, int column) const {
    return LasCell(rows_[record], static_cast<LasColumn>(column));
}

const wchar_t* AddLASFilesModel::NumberFormat(std::size_t record, int column) const {
    const wchar_t* format = LasNumberFormat(rows_[record], static_cast<LasColumn>(column));
    return format != nullptr ? format : GridModel::NumberFormat(record, column);
}

int AddLASFilesModel::Icon(std::size_t record, int column) const {
    return column == IndexOf(LasColumn::LoadFlag) ? LoadFlagImage(LoadFlagOf(rows_[record])) : -1;
}

std::wstring AddLASFilesModel::Tooltip(std::size_t record, int column) const {
    const LasRow& row = rows_[record];
    switch (static_cast<LasColumn>(column)) {
        case LasColumn::LoadFlag:
        case LasColumn::State:
        case LasColumn::FindingCount:
            return FindingsText(row);
        case LasColumn::FileName:
        case LasColumn::Folder:
            return row.inspection.path;
        default:
            return CellText(record, column);
    }
}

}  // namespace orvex
