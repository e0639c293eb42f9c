#pragma once
#include <string>

namespace orvex {

enum class FindingSeverity { Note, Warning, Error };

/// One finding of a file's validation.
struct Finding {
    FindingSeverity severity;
    std::wstring text;  ///< a sentence in plain words
};

}  // namespace orvex
