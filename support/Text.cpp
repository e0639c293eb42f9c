#include "support/Text.h"

#include <cwctype>

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

bool IsSeparator(wchar_t c) {
#ifdef _WIN32
    return c == L'/' || c == L'\\';
#else
    return c == L'/';
#endif
}

std::size_t NameStart(std::wstring_view path) {
    std::size_t start = path.size();
    while (start > 0 && !IsSeparator(path[start - 1])) {
        --start;
    }
    return start;
}

std::size_t ExtensionStart(std::wstring_view path) {
    const std::size_t dot = path.rfind(L'.');
    return dot == std::wstring_view::npos || dot <= NameStart(path) ? path.size() : dot;
}

}  // namespace

std::string ToUtf8(std::wstring_view text) {
    std::string out;
    out.reserve(text.size());
    for (std::size_t i = 0; i < text.size(); ++i) {
        auto code = static_cast<char32_t>(text[i]);
        if constexpr (sizeof(wchar_t) == 2) {
            code &= 0xFFFF;
            if (code >= 0xD800 && code < 0xDC00 && i + 1 < text.size()) {
                const auto low = static_cast<char32_t>(text[i + 1]) & 0xFFFF;
                if (low >= 0xDC00 && low < 0xE000) {
                    code = 0x10000 + ((code - 0xD800) << 10) + (low - 0xDC00);
                    ++i;
                }
            }
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
    std::wstring out;
    out.reserve(bytes.size());
    while (!bytes.empty()) {
        char32_t code = 0;
        std::size_t length = DecodeOne(bytes, code);
        if (length == 0) {
            code = kEscapeBase + static_cast<unsigned char>(bytes.front());
            length = 1;
        }
        AppendWide(out, code);
        bytes.remove_prefix(length);
    }
    return out;
}

std::filesystem::path ToPath(std::wstring_view text) {
#ifdef _WIN32
    return std::filesystem::path(text);
#else
    return std::filesystem::path(ToUtf8(text));
#endif
}

std::wstring FromPath(const std::filesystem::path& path) {
#ifdef _WIN32
    return path.wstring();
#else
    return FromUtf8(path.native());
#endif
}

namespace {
wchar_t UpperOf(wchar_t c) {
    if (c < 0x80) {
        return c >= L'a' && c <= L'z' ? static_cast<wchar_t>(c - 32) : c;
    }
#ifdef _WIN32
    return static_cast<wchar_t>(std::towupper(static_cast<wint_t>(c)));
#else
    // The process may run in the "C" locale, which knows ASCII only.
    static const locale_t unicode = newlocale(LC_CTYPE_MASK, "C.UTF-8", nullptr);
    return static_cast<wchar_t>(unicode ? towupper_l(static_cast<wint_t>(c), unicode)
                                        : std::towupper(static_cast<wint_t>(c)));
#endif
}
}  // namespace

std::wstring ToUpper(std::wstring_view text) {
    std::wstring out(text);
    for (wchar_t& c : out) {
        c = UpperOf(c);
    }
    return out;
}

bool EqualNoCase(std::wstring_view a, std::wstring_view b) {
    return a.size() == b.size() && ToUpper(a) == ToUpper(b);
}

std::wstring FileNameOf(std::wstring_view path) {
    return std::wstring(path.substr(NameStart(path)));
}

std::wstring FolderOf(std::wstring_view path) {
    std::size_t end = NameStart(path);
    const bool driveRoot = end == 3 && path[1] == L':';
    if (end > 1 && !driveRoot) {
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
    return ToUpper(path);
}

}  // namespace orvex
