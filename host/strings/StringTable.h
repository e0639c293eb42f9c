#pragma once
// The text form of a language's string table. One line per text, its columns separated by tabs: the id,
// the name in the code (in the English table alone), the text, and where it is used. In the text, \n is a
// line break, \t a tab and \\ a backslash. Lines that are empty or begin with '#' are skipped. UTF-8.
#include <cstddef>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace orvex {

struct StringEntry {
    unsigned id = 0;
    std::string name;  ///< empty in a table without names
    std::string text;  ///< UTF-8, escapes resolved
    std::string use;   ///< which dialog, page or control shows it
};

/// A line that was skipped, and why.
struct StringTableProblem {
    std::size_t line = 0;  ///< counted from 1
    std::string reason;
};

struct StringTable {
    std::vector<StringEntry> entries;  ///< in file order, each id once (the first line of an id wins)
    std::vector<StringTableProblem> problems;
};

/// Reads a table. A malformed line never stops the rest from being read: a shipped product shows what it has.
StringTable ParseStringTable(std::string_view file);

/// The texts (UTF-8) of a language by id; ids that its table lacks have the text of the fallback's table.
std::unordered_map<unsigned, std::string> MergeStringTables(std::string_view file,
                                                            std::string_view fallbackFile);

}  // namespace orvex
