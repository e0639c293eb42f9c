#pragma once
#include <cstdint>
#include <string>
#include <variant>

#include "support/Text.h"

namespace orvex {

/// A flag shows its icon only; its text is there for copying and for screen readers.
enum class CellKind { Text, Number, DateTime, Flag };
enum class HeaderAlign { Left, Centre, Right };
enum class FooterKind { None, Count, Sum };

/// One column of a grid. Tables of these describe a page's grid completely.
struct GridColumn {
    const char* name;       ///< stable name for tests and exports
    StringId caption = {};  ///< 0: no caption
    int width = 0;          ///< pixels at 100 %; 0: fitted to its contents
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
    FooterKind footer = FooterKind::None;
    StringId footerFormat = text::kFilesFooter;  ///< of a count, with one %d; 0: the number alone
    int headerIcon = -1;                         ///< index in the dialog's image list; -1: none
};

/// A cell's value: nothing, a text, a number (sorted by value), or milliseconds since 1970-01-01 UTC for
/// dates. Nothing, an empty text and NaN sort last in both directions.
using GridCell = std::variant<std::monostate, std::wstring, double, std::int64_t>;

}  // namespace orvex
