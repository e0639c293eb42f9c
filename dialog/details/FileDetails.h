#pragma once
// What the details panes of pages with files say in the same way.
#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <optional>
#include <set>
#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "crs/LayerAssignment.h"
#include "dialog/details/DetailsHtml.h"
#include "dialog/page/RowTraits.h"
#include "support/Column.h"

namespace orvex {

/// Minimum X, minimum Y, maximum X, maximum Y; nullopt: none.
using DetailExtent = std::optional<std::array<double, 4>>;

/// Grows an extent by another; one that is not finite says nothing.
void Unite(DetailExtent& extent, const DetailExtent& other);

/// Sums over several files.
struct FileTotals {
    std::size_t files = 0;
    std::size_t notLoadable = 0;
    std::size_t withFindings = 0;
    std::uint64_t bytes = 0;
    std::vector<std::wstring> crsNames;  ///< of each group, in order of the rows; "" for files without a CRS
    bool isGeographic = false;
    DetailExtent extent;  ///< of all; nullopt when their CRS differ or none has one
};

/// The section of the totals: `own` are those of one kind of data.
DetailSection TotalsSection(const FileTotals& totals, std::vector<DetailField> own);

/// `extentOf`: gives the DetailExtent of a row.
template <FileRow Row, typename ExtentOf>
FileTotals TotalsOf(std::span<const Row> rows, std::span<const std::size_t> records,
                    const ExtentOf& extentOf) {
    FileTotals totals;
    std::set<std::string> groups;  // different CRSs may have one name
    for (const std::size_t record : records) {
        const Row& row = rows[record];
        ++totals.files;
        totals.bytes += row.fileSize;
        totals.withFindings += LoadFlagOf(row) == LoadFlag::Findings ? 1 : 0;
        if (!row.loadable) {
            ++totals.notLoadable;
            continue;
        }
        if (groups.insert(LayerKeyOf(*row.crs)).second) {
            totals.crsNames.push_back(row.crs->name);
        }
        totals.isGeographic = row.crs->isGeographic;
        Unite(totals.extent, extentOf(row));
    }
    if (totals.crsNames.size() != 1) {
        totals.extent.reset();
    }
    return totals;
}

/// What is odd about a file; why it cannot be loaded comes first.
template <FileRow Row>
QString FileFindingsHtml(const Row& row) {
    const std::wstring failure = row.loadable ? std::wstring() : row.summary;
    std::vector<Finding> findings(row.findings.begin(), row.findings.end());
    if (row.place.inProject) {
        findings.push_back({FindingSeverity::Note, Text(text::kFileInProject)});
    }
    std::erase_if(findings,
                  [&](const Finding& finding) { return failure.find(finding.text) != std::wstring::npos; });
    return FindingsHtml(findings, failure, Text(text::kDetailsNothingOdd));
}

/// Adds cells of the grid, each under its column's caption, unless they are empty.
template <typename Row>
void AddCells(std::vector<DetailField>& fields, std::span<const Column<Row>> columns, const Row& row,
              std::initializer_list<std::string_view> names) {
    for (const std::string_view name : names) {
        const Column<Row>& column = ColumnNamed(columns, name);
        AddField(fields, column.caption, LooseCellText(column, row));
    }
}

/// "1.00 – 2.00", of the cells of two columns; empty when one of them is.
template <typename Row>
std::wstring RangeText(std::span<const Column<Row>> columns, const Row& row, std::string_view from,
                       std::string_view to) {
    const std::wstring first = CellText(ColumnNamed(columns, from), row);
    const std::wstring last = CellText(ColumnNamed(columns, to), row);
    return first.empty() || last.empty() ? std::wstring() : first + L" \u2013 " + last;
}

}  // namespace orvex
