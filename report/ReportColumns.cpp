#include "report/ReportColumns.h"

#include <algorithm>
#include <stdexcept>
#include <vector>

#include "feature/FeatureColumns.h"
#include "las/LasColumns.h"
#include "photo/PhotoColumns.h"
#include "raster/RasterColumns.h"
#include "support/FileTableCsv.h"

namespace orvex {
namespace {

template <typename Row>
void AddColumns(std::span<const Column<Row>> columns, std::vector<ReportColumn>& all) {
    for (const Column<Row>& column : columns) {
        const bool isKnown = std::ranges::any_of(all, [&](const ReportColumn& known) {
            return std::string_view(known.Look().name) == column.name;
        });
        if (!isKnown && IsInFileTable(column)) {
            all.emplace_back(column);
        }
    }
}

std::vector<ReportColumn> AllColumns() {
    std::vector<ReportColumn> all;
    AddColumns(LasColumns(), all);
    AddColumns(RasterColumns(RasterUse::Image), all);
    AddColumns(RasterColumns(RasterUse::Dem), all);
    AddColumns(FeatureColumns(), all);
    AddColumns(PhotoColumns(), all);
    return all;
}

/// Calls `use` with the page's column of a name and the file's row; empty when the page has none.
template <typename Result, typename Use>
Result WithCell(const FileReport& report, std::string_view name, const Use& use) {
    const auto find = [&](auto columns, const auto& row) -> Result {
        const auto found = std::ranges::find(columns, name, [](const GridColumn& c) { return c.name; });
        return found == columns.end() ? Result() : use(*found, row);
    };
    if (report.las) {
        return find(LasColumns(), *report.las);
    }
    if (report.feature) {
        return find(FeatureColumns(), *report.feature);
    }
    if (report.photo) {
        return find(PhotoColumns(), *report.photo);
    }
    return report.raster ? find(RasterColumns(report.use), *report.raster) : Result();
}

}  // namespace

std::optional<GridCell> ReportColumn::Cell(const FileReport& report) const {
    return WithCell<std::optional<GridCell>>(
        report, look_->name, [](const auto& column, const auto& row) { return column.cell(row); });
}

std::wstring ReportColumn::Text(const FileReport& report) const {
    return WithCell<std::wstring>(report, look_->name,
                                  [](const auto& column, const auto& row) { return CellText(column, row); });
}

std::wstring ReportColumn::ExactText(const FileReport& report) const {
    return WithCell<std::wstring>(report, look_->name, [](const auto& column, const auto& row) {
        return orvex::ExactText(column, row);
    });
}

std::span<const ReportColumn> ReportColumns() {
    static const std::vector<ReportColumn> columns = AllColumns();
    return columns;
}

const ReportColumn& ReportColumnNamed(std::string_view name) {
    for (const ReportColumn& column : ReportColumns()) {
        if (column.Look().name == name) {
            return column;
        }
    }
    throw std::logic_error("no page has a column " + std::string(name));
}

}  // namespace orvex
