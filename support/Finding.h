#pragma once
#include <string>

namespace orvex {

enum class FindingSeverity { Note, Warning, Error };

/// One thing that is odd about a file.
struct Finding {
    FindingSeverity severity;
    std::wstring text;  ///< a sentence in plain words
};

}  // namespace orvex
