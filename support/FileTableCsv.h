#pragma once
#include <iosfwd>
#include <span>
#include <string>
#include <string_view>

#include "support/Column.h"

namespace orvex {

/// A file as every table of files describes it, before the columns of its page.
struct FileInTable {
    std::wstring_view path;
    std::string_view kind;  ///< of its data: "las"
    bool loadable = false;
    std::wstring_view summary;
    std::wstring_view findings;  ///< one a line
};

/// True for a column of a page that tables of files have beside what they state themselves. Flags are icons.
bool IsInFileTable(const GridColumn& column);

/// A table of files as CSV: RFC 4180, UTF-8 without a byte order mark, the stable names as a header.
class FileTableCsv {
  public:
    /// Writes the header: what every file has, then `columns`. `out` outlives the table.
    FileTableCsv(std::ostream& out, std::span<const std::string_view> columns);

    /// Begins the line of a file; a cell for each column and EndFile follow.
    void BeginFile(const FileInTable& file);
    void Cell(std::wstring_view text);
    void EndFile();

  private:
    std::ostream& out_;
    bool isFirst_ = true;
};

}  // namespace orvex
