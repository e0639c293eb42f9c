#pragma once
#include <string>
#include <vector>

#include "dialog/grid/GridModel.h"

namespace orvex {

/// Rows as tab-separated text, one line per row, each terminated by a line feed. Tabs and line breaks inside
/// a cell become blanks, so that a spreadsheet reads the table back unchanged.
std::wstring TabSeparated(const GridModel& model, const std::vector<int>& rows,
                          const std::vector<int>& columns, bool withHeaders);

/// A text as one line: each run of line breaks, tabs and adjoining blanks becomes one blank.
std::wstring OnOneLine(std::wstring text);

}  // namespace orvex
