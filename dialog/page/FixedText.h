#pragma once
#include <string>

#include "support/Text.h"

namespace orvex {

/// A fixed text: from the string library, or literal where it has no id there. Empty without either.
struct FixedText {
    constexpr FixedText() = default;
    constexpr FixedText(StringId textId) : id(textId) {}
    constexpr FixedText(const wchar_t* text) : literal(text) {}

    bool IsEmpty() const { return id.value == 0 && *literal == 0; }
    std::wstring Get() const { return id.value != 0 ? Text(id) : std::wstring(literal); }

    StringId id = {};
    const wchar_t* literal = L"";
};

}  // namespace orvex
