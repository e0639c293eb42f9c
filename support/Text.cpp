#include "support/Text.h"

#include <algorithm>

namespace orvex {
namespace {

constexpr char32_t kEscapeBase = 0xDC00;  // U+DC80..U+DCFF stand for the bytes 0x80..0xFF

bool IsEscape(char32_t code) {
    return code >= kEscapeBase + 0x80 && code <= kEscapeBase + 0xFF;
}

void AppendUtf8(std::string& out, char32_t code) {
    auto put = [&out](char32_t byte) { out.push_back(static_cast<char>(static_cast<unsigned char>(byte))); };
    if (code < 0x80) {
        put(code);
    } else if (code < 0x800) {
        put(0xC0 | (code >> 6));
        put(0x80 | (code & 0x3F));
    } else if (code < 0x10000) {
        put(0xE0 | (code >> 12));
        put(0x80 | ((code >> 6) & 0x3F));
        put(0x80 | (code & 0x3F));
    } else {
        put(0xF0 | (code >> 18));
        put(0x80 | ((code >> 12) & 0x3F));
        put(0x80 | ((code >> 6) & 0x3F));
        put(0x80 | (code & 0x3F));
    }
}

void AppendWide(std::wstring& out, char32_t code) {
    if constexpr (sizeof(wchar_t) == 2) {
        if (code >= 0x10000) {
            code -= 0x10000;
            out.push_back(static_cast<wchar_t>(0xD800 + (code >> 10)));
            out.push_back(static_cast<wchar_t>(0xDC00 + (code & 0x3FF)));
            return;
        }
    }
    out.push_back(static_cast<wchar_t>(code));
}

char32_t EscapeOf(char byte) {
    return kEscapeBase + static_cast<unsigned char>(byte);
}

bool IsLowSurrogate(char32_t code) {
    return code >= 0xDC00 && code < 0xE000;
}

bool IsHighSurrogate(wchar_t unit) {
    const auto code = static_cast<char32_t>(unit);
    return code >= 0xD800 && code < 0xDC00;
}

/// True when two units of 16 bits at a place are one character; lone surrogates of 32 bits never make one.
bool IsPair(std::wstring_view text, std::size_t at) {
    return sizeof(wchar_t) == 2 && at + 1 < text.size() && IsHighSurrogate(text[at]) &&
           IsLowSurrogate(static_cast<char32_t>(text[at + 1]));
}

// A high surrogate that had its own three bytes would make a pair with the low one that comes next, and be
// written as four bytes: its bytes are kept instead, and so are those of the ones before it, which now have a
// low one behind them.
void EscapeLoneHighSurrogates(std::wstring& out) {
    std::size_t start = out.size();
    while (start > 0 && IsHighSurrogate(out[start - 1])) {
        --start;
    }
    std::string bytes;
    for (const wchar_t unit : std::wstring_view(out).substr(start)) {
        AppendUtf8(bytes, static_cast<char32_t>(unit));
    }
    out.resize(start);
    for (const char byte : bytes) {
        AppendWide(out, EscapeOf(byte));
    }
}

// The length of the well-formed sequence at the head of `bytes` and its code point; length 0 when there is
// none. Surrogates in their three-byte form are well formed here unless they are the escapes above.
std::size_t DecodeOne(std::string_view bytes, char32_t& code) {
    auto at = [&bytes](std::size_t i) { return static_cast<unsigned char>(bytes[i]); };
    const unsigned char lead = at(0);
    std::size_t length = 0;
    char32_t minimum = 0;
    if (lead < 0x80) {
        code = lead;
        return 1;
    }
    if ((lead & 0xE0) == 0xC0) {
        length = 2, code = lead & 0x1FU, minimum = 0x80;
    } else if ((lead & 0xF0) == 0xE0) {
        length = 3, code = lead & 0x0FU, minimum = 0x800;
    } else if ((lead & 0xF8) == 0xF0) {
        length = 4, code = lead & 0x07U, minimum = 0x10000;
    }
    if (length == 0 || bytes.size() < length) {
        return 0;
    }
    for (std::size_t i = 1; i < length; ++i) {
        if ((at(i) & 0xC0) != 0x80) {
            return 0;
        }
        code = (code << 6) | (at(i) & 0x3FU);
    }
    return code < minimum || code > 0x10FFFF || IsEscape(code) ? 0 : length;
}

/// Length of the ASCII characters with which a text begins.
template <typename View>
std::size_t CountAscii(View text) {
    const auto end = std::ranges::find_if(text, [](auto c) {
        constexpr unsigned kFirstOther = 0x80;
        return static_cast<unsigned>(c) >= kFirstOther;
    });
    return static_cast<std::size_t>(end - text.begin());
}

std::size_t NameStart(std::wstring_view path) {
    const std::size_t root = RootLength(path);
    std::size_t start = path.size();
    while (start > root && !IsSeparator(path[start - 1])) {
        --start;
    }
    return start;
}

std::size_t ExtensionStart(std::wstring_view path) {
    const std::size_t dot = path.rfind(L'.');
    return dot == std::wstring_view::npos || dot <= NameStart(path) ? path.size() : dot;
}

}  // namespace

std::size_t WholeLength(std::wstring_view text, std::size_t length) {
    return length > 0 && length < text.size() && IsPair(text, length - 1) ? length - 1 : length;
}

std::size_t CountCharacters(std::wstring_view text) {
    std::size_t count = text.size();
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (IsPair(text, i)) {
            --count;
            ++i;
        }
    }
    return count;
}

std::string ToUtf8(std::wstring_view text) {
    // Nearly all texts are ASCII.
    const std::size_t ascii = CountAscii(text);
    std::string out(ascii, '\0');
    std::transform(text.begin(), text.begin() + static_cast<std::ptrdiff_t>(ascii), out.begin(),
                   [](wchar_t c) { return static_cast<char>(c); });
    for (std::size_t i = ascii; i < text.size(); ++i) {
        auto code = static_cast<char32_t>(text[i]);
        if (IsPair(text, i)) {
            code = 0x10000 + ((code - 0xD800) << 10) + (static_cast<char32_t>(text[i + 1]) - 0xDC00);
            ++i;
        }
        if (IsEscape(code)) {
            out.push_back(static_cast<char>(static_cast<unsigned char>(code - kEscapeBase)));
        } else {
            AppendUtf8(out, code > 0x10FFFF ? 0xFFFD : code);
        }
    }
    return out;
}

std::wstring FromUtf8(std::string_view bytes) {
    const std::size_t ascii = CountAscii(bytes);
    std::wstring out(bytes.begin(), bytes.begin() + ascii);
    bytes.remove_prefix(ascii);
    while (!bytes.empty()) {
        char32_t code = 0;
        std::size_t length = DecodeOne(bytes, code);
        if (length == 0) {
            code = EscapeOf(bytes.front());
            length = 1;
        }
        if (sizeof(wchar_t) == 2 && IsLowSurrogate(code)) {
            EscapeLoneHighSurrogates(out);
        }
        AppendWide(out, code);
        bytes.remove_prefix(length);
    }
    return out;
}

std::string ValidUtf8(std::string_view bytes) {
    std::string valid;
    valid.reserve(bytes.size());
    while (!bytes.empty()) {
        char32_t code = 0;
        const std::size_t length = DecodeOne(bytes, code);
        const bool isValid = length > 0 && (code < 0xD800 || code > 0xDFFF);
        valid += isValid ? bytes.substr(0, length) : "\xEF\xBF\xBD";
        bytes.remove_prefix(isValid ? length : 1);
    }
    return valid;
}

bool EqualNoCase(std::wstring_view a, std::wstring_view b) {
    return a.size() == b.size() && ToUpper(a) == ToUpper(b);
}

std::wstring WithoutControls(std::wstring text, std::wstring_view kept) {
    std::ranges::replace_if(
        text,
        [kept](wchar_t c) {
            return (c < L' ' || (c >= 0x7F && c < 0xA0)) && kept.find(c) == std::wstring_view::npos;
        },
        L' ');
    return text;
}

std::wstring FileNameOf(std::wstring_view path) {
    return std::wstring(path.substr(NameStart(path)));
}

std::wstring FolderOf(std::wstring_view path) {
    std::size_t end = NameStart(path);
    if (end > RootLength(path)) {
        --end;
    }
    return std::wstring(path.substr(0, end));
}

std::wstring UpperExtensionOf(std::wstring_view path) {
    return ToUpper(path.substr(ExtensionStart(path)));
}

std::wstring WithExtension(std::wstring_view path, std::wstring_view extension) {
    std::wstring out(path.substr(0, ExtensionStart(path)));
    return out.append(extension);
}

std::wstring PathKey(std::wstring_view path) {
    return ToUpper(NativePath(path));
}

}  // namespace orvex
