#pragma once
#include <optional>
#include <span>
#include <string>
#include <string_view>

#include "report/FileReport.h"
#include "support/Column.h"

namespace orvex {

/// A column of the pages' grids, as inspect prints it. Columns of one name on several
/// pages are one.
class ReportColumn {
  public:
    explicit ReportColumn(const GridColumn& look) : look_(&look) {}

    /// Caption, alignment and name.
    const GridColumn& Look() const { return *look_; }
    /// The cell; nullopt for a file whose page has no such column.
    std::optional<GridCell> Cell(const FileReport& report) const;
    /// Text of the cell as the grid shows it; empty for a file whose page has no such column.
    std::wstring Text(const FileReport& report) const;
    /// The same, but numbers with all their digits.
    std::wstring ExactText(const FileReport& report) const;

  private:
    const GridColumn* look_;
};

/// Every column that a page shows, in the order of the pages.
std::span<const ReportColumn> ReportColumns();

/// The column of a name. Throws std::logic_error when no page has one.
const ReportColumn& ReportColumnNamed(std::string_view name);

}  // namespace orvex
