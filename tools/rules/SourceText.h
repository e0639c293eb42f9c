#pragma once
// The view of a C++ source that the rules need: what is code on each line, and what is included.
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
    /// One per line: comments and the insides of string and character literals are blank.
    std::vector<std::string> code;
    std::vector<Include> includes;
};

SourceText ReadSource(std::string_view bytes);

/// Whether a line of code has a word (an identifier of its own, not a part of one).
bool HasWord(std::string_view code, std::string_view word);

}  // namespace orvex::rules
