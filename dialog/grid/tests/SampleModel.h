#pragma once
#include <limits>
#include <new>
#include <string>
#include <vector>

#include "dialog/page/ListModel.h"

namespace orvex::testing {

struct SampleRecord {
    std::wstring name;
    GridCell size;
    GridCell modified = {};
    bool good = true;
    std::wstring crs = {};
};

inline constexpr Column<SampleRecord> kSampleColumns[] = {
    {{.name = "flag",
      .width = 20,
      .kind = CellKind::Flag,
      .basic = true,
      .frozen = true,
      .resizable = false,
      .headerIcon = 0},
     [](const SampleRecord& r) { return GridCell(std::wstring(r.good ? L"true" : L"false")); },
     {.icon = [](const SampleRecord& r) { return r.good ? 0 : 1; },
      .words = [](const SampleRecord& r) { return std::wstring(r.good ? L"OK" : L"Error"); }}},
    {{.name = "path", .caption = text::kGridCopy, .width = 200, .hidden = true},
     [](const SampleRecord& r) { return GridCell(L"/data/" + r.name); }},
    {{.name = "name",
      .caption = text::kGridCopyWithoutHeaders,
      .width = 120,
      .basic = true,
      .frozen = true,
      .footer = FooterKind::Count,
      .footerFormat = {}},
     [](const SampleRecord& r) { return GridCell(r.name); },
     {.tooltip = [](const SampleRecord& r) { return L"/data/" + r.name; }}},
    {{.name = "size",
      .caption = text::kGridSelectAll,
      .width = 90,
      .kind = CellKind::Number,
      .format = L"%.2f",
      .align = HeaderAlign::Right,
      .basic = true,
      .footer = FooterKind::Sum},
     [](const SampleRecord& r) { return r.size; },
     {.format = [](const SampleRecord& r) { return r.name == L"whole" ? L"%.0f" : nullptr; }}},
    {{.name = "modified",
      .caption = text::kGridFitColumns,
      .width = 150,
      .kind = CellKind::DateTime,
      .format = L"yyyy-MM-dd",
      .minimumWidth = 130},
     [](const SampleRecord& r) { return r.modified; }},
    {{.name = "summary",
      .caption = text::kGridAccessibleName,
      .width = 300,
      .basic = true,
      .maximumWidth = 400,
      .takesSpare = true},
     [](const SampleRecord& r) { return GridCell(L"Summary of " + r.name + L"\nsecond line\tof it"); }},
    {{.name = "more", .alsoKnownAs = "crs", .caption = text::kGridTotalsAccessibleName, .width = 400},
     [](const SampleRecord& r) { return GridCell(r.crs); },
     {.colour = [](const SampleRecord& r) { return r.good ? std::optional(0x008000U) : std::nullopt; }}},
};
enum SampleColumn { kFlag, kPath, kName, kSize, kModified, kSummary, kMore };

/// The rows of a page, made up by a test; counts what the views ask.
class SampleModel : public ListModel<SampleRecord> {
  public:
    SampleModel() : ListModel(kSampleColumns) {}

    void AddNames(const std::vector<std::wstring>& names) {
        std::vector<SampleRecord> added;
        added.reserve(names.size());
        for (const std::wstring& name : names) {
            added.push_back({name, 1.0});
        }
        Append(std::move(added));
    }
    void Replace(std::size_t record, const SampleRecord& value) {
        Change([&](std::vector<SampleRecord>& records) { records[record] = value; });
    }

    /// The names in the order of the rows.
    std::vector<std::wstring> Names() const {
        std::vector<std::wstring> names;
        for (int row = 0; row < rowCount(); ++row) {
            names.push_back(Rows()[RecordOfRow(row)].name);
        }
        return names;
    }

    mutable std::size_t cellsAsked = 0;
    bool fails = false;  ///< cells cannot be made

  protected:
    GridCell Cell(std::size_t record, int column) const override {
        ++cellsAsked;
        if (fails) {
            throw std::bad_alloc();
        }
        return ListModel::Cell(record, column);
    }
};

inline constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();

}  // namespace orvex::testing
