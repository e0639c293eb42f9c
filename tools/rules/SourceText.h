#pragma once
// C++ source as the rules see it: the code of each line, and the includes.
#include <string>
#include <string_view>
#include <vector>

namespace orvex::rules {

struct Include {
    std::size_t line = 0;  ///< counted from 1
    std::string name;      ///< without its quotes or angle brackets
    bool quoted = false;   ///< "name" rather than <name>
};

struct SourceText {
    /// One per line, with comments and the contents of string and character literals blanked out.
    std::vector<std::string> code;
    std::vector<Include> includes;
};

SourceText ReadSource(std::string_view bytes);

/// True if a line of code contains `word` as a whole identifier.
bool HasWord(std::string_view code, std::string_view word);

}  // namespace orvex::rules
