#pragma once
#include <string>

#include "support/Text.h"

namespace orvex {

/// A fixed text: by id, or literally where there is no id. One without either is empty.
struct FixedText {
    StringId id = {};
    const wchar_t* literal = L"";

    bool IsEmpty() const { return id.value == 0 && *literal == 0; }
    std::wstring Get() const { return id.value != 0 ? Text(id) : std::wstring(literal); }
};

}  // namespace orvex
