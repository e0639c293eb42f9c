#include "support/JsonText.h"

#include <fmt/format.h>

#include <algorithm>
#include <charconv>
#include <nlohmann/json.hpp>
#include <optional>

#include "support/Format.h"
#include "support/JsonLimits.h"
#include "support/LDataError.h"
#include "support/Text.h"

namespace orvex {
namespace {

using Json = nlohmann::json;

// The parser refuses lone surrogates. They are handed to it as U+0000, which no caller may use, and a
// character of the private area that tells which.
constexpr unsigned kFirstSurrogate = 0xD800;
constexpr unsigned kFirstLow = 0xDC00;
constexpr unsigned kBehindSurrogates = 0xE000;
constexpr unsigned kMarkShift = kBehindSurrogates - kFirstSurrogate;
constexpr std::size_t kEscapeLength = 6;  // \uXXXX

bool IsSurrogate(unsigned code) {
    return code >= kFirstSurrogate && code < kBehindSurrogates;
}

bool IsHigh(unsigned code) {
    return code >= kFirstSurrogate && code < kFirstLow;
}

bool IsLow(unsigned code) {
    return code >= kFirstLow && code < kBehindSurrogates;
}

unsigned CodeOf(wchar_t unit) {
    return static_cast<unsigned>(unit);
}

/// Code unit of the escape \uXXXX at a place; nullopt if there is none.
std::optional<unsigned> EscapeAt(std::string_view text, std::size_t at) {
    unsigned code = 0;
    if (text.size() < at + kEscapeLength || text.substr(at, 2) != "\\u") {
        return std::nullopt;
    }
    const char* const digits = text.data() + at + 2;
    const char* const end = text.data() + at + kEscapeLength;
    const auto [read, error] = std::from_chars(digits, end, code, 16);
    return error == std::errc() && read == end ? std::optional(code) : std::nullopt;
}

/// Length of a surrogate pair in 16-bit units at a place: 2, else 0.
std::size_t PairAt(std::wstring_view text, std::size_t at) {
    return sizeof(wchar_t) == 2 && at + 1 < text.size() && IsHigh(CodeOf(text[at])) &&
                   IsLow(CodeOf(text[at + 1]))
               ? 2
               : 0;
}

/// Appends the escape at a place, marked if it is a lone surrogate; returns its length.
std::size_t AppendEscape(std::string_view text, std::size_t at, std::string& out) {
    const std::optional<unsigned> code = EscapeAt(text, at);
    if (!code) {
        out += text.substr(at, 2);  // a backslash and its letter, or what the parser refuses
        return 2;
    }
    if (*code == 0) {
        throw LDataError(L"a text holds the character U+0000");
    }
    if (IsHigh(*code) && IsLow(EscapeAt(text, at + kEscapeLength).value_or(0))) {
        out += text.substr(at, 2 * kEscapeLength);
        return 2 * kEscapeLength;
    }
    out += IsSurrogate(*code) ? fmt::format("\\u0000\\u{:04x}", *code + kMarkShift)
                              : std::string(text.substr(at, kEscapeLength));
    return kEscapeLength;
}

/// The text with its lone surrogates marked. Escapes are valid in strings only, so that nothing else is
/// touched.
std::string Marked(std::string_view text) {
    std::string out;
    out.reserve(text.size());
    for (std::size_t i = 0; i < text.size();) {
        const std::size_t plain = std::min(text.find('\\', i), text.size());
        out += text.substr(i, plain - i);
        i = plain == text.size() ? plain : plain + AppendEscape(text, plain, out);
    }
    return out;
}

void RefuseExcess(std::string_view text) {
    if (text.size() > kMostJsonBytes) {
        throw LDataError(FormatText(L"the JSON text is longer than %u bytes", {kMostJsonBytes}));
    }
    const JsonExcess excess = ExcessOf(text);
    if (excess == JsonExcess::Depth) {
        throw LDataError(FormatText(L"the JSON text is nested more than %u deep", {kMostJsonDepth}));
    }
    if (excess == JsonExcess::Values) {
        throw LDataError(FormatText(L"the JSON text has more than %u values", {kMostJsonValues}));
    }
}

}  // namespace

std::string JsonQuoted(std::wstring_view text) {
    std::string out = "\"";
    const auto append = [&](std::wstring_view valid) {
        const std::string quoted = Json(ToUtf8(valid)).dump();
        out.append(quoted, 1, quoted.size() - 2);
    };
    std::size_t start = 0;
    for (std::size_t i = 0; i < text.size(); i += std::max<std::size_t>(PairAt(text, i), 1)) {
        if (IsSurrogate(CodeOf(text[i])) && PairAt(text, i) == 0) {
            append(text.substr(start, i - start));
            out += fmt::format("\\u{:04x}", CodeOf(text[i]));
            start = i + 1;
        }
    }
    append(text.substr(start));
    return out + '"';
}

Json ParseCallersJson(std::string_view text) {
    RefuseExcess(text);
    try {
        return Json::parse(Marked(text));
    } catch (const Json::parse_error& error) {
        // Not the parser's own words, which repeat the text: it may hold a token.
        throw LDataError(FormatText(L"the JSON text is not well-formed at byte %u", {error.byte}));
    } catch (const Json::out_of_range&) {
        throw LDataError(L"the JSON text holds a number out of range");
    }
}

std::wstring JsonWide(const std::string& parsed) {
    std::wstring text = FromUtf8(parsed);
    std::size_t out = 0;
    for (std::size_t i = 0; i < text.size(); ++i, ++out) {
        const bool isMark = text[i] == L'\0' && i + 1 < text.size();
        text[out] = isMark ? static_cast<wchar_t>(CodeOf(text[++i]) - kMarkShift) : text[i];
    }
    text.resize(out);
    return text;
}

}  // namespace orvex
