#pragma once
// Columns of a table of files or layers, for the grids of the dialog and for the command line. A table of
// Column<Row> describes a grid completely: each row holds what a column looks like and how its cells are
// read.
#include <cstdint>
#include <optional>
#include <span>
#include <stdexcept>
#include <string>
#include <string_view>
#include <variant>

#include "support/Format.h"
#include "support/Text.h"

namespace orvex {

/// A flag shows its icon only; its text is there for copying and for screen readers.
enum class CellKind { Text, Number, DateTime, Flag };
enum class HeaderAlign { Left, Centre, Right };
enum class FooterKind { None, Count, Sum };

/// Appearance of a column, whatever the type of the rows.
struct GridColumn {
    const char* name;              ///< stable name for details, tests and exports
    const char* alsoKnownAs = "";  ///< a name that users type in a filter, maybe that of several columns
    StringId caption = {};         ///< 0: no caption
    int width = 0;                 ///< pixels at 100 %; 0: fitted to its contents
    CellKind kind = CellKind::Text;
    /// Of numbers, printf-like; of dates, a QDateTime format (empty: the locale's short one).
    const wchar_t* format = L"";
    HeaderAlign align = HeaderAlign::Left;  ///< of the caption, and of cells that are no numbers
    StringId tooltip = {};                  ///< of the header; 0: none
    bool basic = false;                     ///< stays when the detail columns are hidden
    bool hidden = false;                    ///< never shown
    bool frozen = false;                    ///< stays at the left when scrolling
    bool resizable = true;
    int minimumWidth = 0;  ///< 0: none
    int maximumWidth = 0;  ///< 0: none; applies to fitting, not to the user's dragging
    /// Gets the width that the other columns leave free; fitted as a message is long, when its row arrives.
    bool takesSpare = false;
    FooterKind footer = FooterKind::None;
    StringId footerFormat = text::kFilesFooter;  ///< of a count, with one %s; 0: the number alone
    int headerIcon = -1;                         ///< index in the dialog's image list; -1: none
};

/// True for the column of the files' full paths, which may be hidden.
constexpr bool IsPath(const GridColumn& column) {
    return std::string_view(column.name) == "path";
}

/// True for a column that users can ask for: one that can be shown, and the path.
constexpr bool IsOffered(const GridColumn& column) {
    return !column.hidden || IsPath(column);
}

/// A cell's value: empty, a text, a number (sorted by value), or milliseconds since 1970-01-01 UTC for dates.
/// Empty cells, empty texts and NaN sort last in both directions.
using GridCell = std::variant<std::monostate, std::wstring, double, std::int64_t>;

/// What single cells of a column have of their own. Null: as the column says.
template <typename Row>
struct CellLook {
    std::wstring (*tooltip)(const Row& row) = nullptr;   ///< null: the cell's own text
    const wchar_t* (*format)(const Row& row) = nullptr;  ///< printf-like, of numbers; may return null
    int (*icon)(const Row& row) = nullptr;               ///< index in the dialog's image list; null: none
    /// A flag in words, for copying, searching and screen readers; null: "true" or "false".
    std::wstring (*words)(const Row& row) = nullptr;
    /// Text colour as 0xRRGGBB, meant for a white background; nullopt: the usual one.
    std::optional<std::uint32_t> (*colour)(const Row& row) = nullptr;
    GridCell (*order)(const Row& row) = nullptr;  ///< what the rows are sorted by; null: the cell
};

/// One column of a table of rows. The functions are called on the user-interface thread.
template <typename Row>
struct Column : GridColumn {
    GridCell (*cell)(const Row& row) = nullptr;
    CellLook<Row> look = {};
};

/// Text of a text or number cell as the grid shows it; a date in UTC; empty for other cells and NaN.
std::wstring FormatCell(const GridCell& cell, const wchar_t* format);

/// The same, but of a number all its digits; empty for infinities.
std::wstring ExactCell(const GridCell& cell, const wchar_t* format);

template <typename Row>
const wchar_t* NumberFormat(const Column<Row>& column, const Row& row) {
    const wchar_t* format = column.look.format == nullptr ? nullptr : column.look.format(row);
    return format == nullptr ? column.format : format;
}

template <typename Row>
std::wstring CellText(const Column<Row>& column, const Row& row) {
    return FormatCell(column.cell(row), NumberFormat(column, row));
}

template <typename Row>
std::wstring ExactText(const Column<Row>& column, const Row& row) {
    return ExactCell(column.cell(row), NumberFormat(column, row));
}

/// The same where a number stands alone, as in a tooltip: quantities, which have a sum, with grouped digits.
template <typename Row>
std::wstring LooseCellText(const Column<Row>& column, const Row& row) {
    const wchar_t* format = NumberFormat(column, row);
    return FormatCell(column.cell(row),
                      column.footer == FooterKind::Sum ? GroupedFormat(format).c_str() : format);
}

/// The column of a name. Throws std::logic_error when the table has none.
template <typename Row>
const Column<Row>& ColumnNamed(std::span<const Column<Row>> columns, std::string_view name) {
    for (const Column<Row>& column : columns) {
        if (column.name == name) {
            return column;
        }
    }
    throw std::logic_error("no column is called " + std::string(name));
}

}  // namespace orvex
