#pragma once
#include <limits>
#include <string>
#include <vector>

#include "dialog/grid/GridModel.h"

namespace orvex::testing {

struct SampleRecord {
    std::wstring name;
    GridCell size;
    GridCell modified = {};
    bool good = true;
};

inline constexpr GridColumn kSampleColumns[] = {
    {.name = "flag",
     .width = 20,
     .kind = CellKind::Flag,
     .basic = true,
     .frozen = true,
     .resizable = false,
     .headerIcon = 0},
    {.name = "path", .caption = text::kGridCopy, .width = 200, .hidden = true},
    {.name = "name",
     .caption = text::kGridCopyWithoutHeaders,
     .width = 120,
     .basic = true,
     .frozen = true,
     .footer = FooterKind::Count,
     .footerFormat = {}},
    {.name = "size",
     .caption = text::kGridSelectAll,
     .width = 90,
     .kind = CellKind::Number,
     .format = L"%.2f",
     .align = HeaderAlign::Right,
     .basic = true,
     .footer = FooterKind::Sum},
    {.name = "modified",
     .caption = text::kGridFitColumns,
     .width = 150,
     .kind = CellKind::DateTime,
     .format = L"yyyy-MM-dd",
     .minimumWidth = 130},
    {.name = "summary",
     .caption = text::kGridAccessibleName,
     .width = 300,
     .basic = true,
     .maximumWidth = 240},
    {.name = "more",
     .caption = text::kGridFixedColumnsAccessibleName,
     .width = 200,
     .align = HeaderAlign::Centre},
    {.name = "rest", .caption = text::kGridTotalsAccessibleName, .width = 200},
};
enum SampleColumn { kFlag, kPath, kName, kSize, kModified, kSummary, kMore, kRest };

/// A grid of records that a test makes up; counts what the views ask.
class SampleModel : public GridModel {
  public:
    SampleModel() : GridModel(kSampleColumns) {}

    void Add(const std::vector<SampleRecord>& added) {
        AppendRecords(added.size(), [&] { records_.insert(records_.end(), added.begin(), added.end()); });
    }
    void AddNames(const std::vector<std::wstring>& names) {
        std::vector<SampleRecord> added;
        added.reserve(names.size());
        for (const std::wstring& name : names) {
            added.push_back({name, 1.0});
        }
        Add(added);
    }
    void Remove(const std::vector<std::size_t>& records) {
        RemoveRecords(records, [&] { EraseAt(records_, records); });
    }
    void Clear() {
        ClearRecords([&] { records_.clear(); });
    }
    void Change(std::size_t record, const SampleRecord& value) {
        records_[record] = value;
        NotifyChanged(0, columnCount() - 1);
    }

    /// The names in the order of the rows.
    std::vector<std::wstring> Names() const {
        std::vector<std::wstring> names;
        for (int row = 0; row < rowCount(); ++row) {
            names.push_back(records_[RecordOfRow(row)].name);
        }
        return names;
    }

    mutable std::size_t cellsAsked = 0;

  protected:
    std::size_t RecordCount() const override { return records_.size(); }
    GridCell Cell(std::size_t record, int column) const override {
        ++cellsAsked;
        const SampleRecord& r = records_[record];
        switch (column) {
            case kFlag:
                return std::wstring(r.good ? L"true" : L"false");
            case kPath:
                return L"/data/" + r.name;
            case kName:
                return r.name;
            case kSize:
                return r.size;
            case kModified:
                return r.modified;
            case kSummary:
                return L"Summary of " + r.name + L"\nsecond line\tof it";
            default:
                return std::monostate();
        }
    }
    int Icon(std::size_t record, int column) const override {
        return column == kFlag ? (records_[record].good ? 0 : 1) : -1;
    }

  private:
    std::vector<SampleRecord> records_;
};

inline constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();

}  // namespace orvex::testing
