#include <clocale>
#include <cwctype>

#include "support/Text.h"

namespace orvex {
namespace {

wchar_t UpperOf(wchar_t c) {
    if (c < 0x80) {
        return c >= L'a' && c <= L'z' ? static_cast<wchar_t>(c - 32) : c;
    }
    // The process may run in the "C" locale, which knows ASCII only.
    static const locale_t unicode = newlocale(LC_CTYPE_MASK, "C.UTF-8", nullptr);
    return static_cast<wchar_t>(unicode ? towupper_l(static_cast<wint_t>(c), unicode)
                                        : std::towupper(static_cast<wint_t>(c)));
}

}  // namespace

std::wstring ToUpper(std::wstring_view text) {
    std::wstring out(text);
    for (wchar_t& c : out) {
        c = UpperOf(c);
    }
    return out;
}

std::wstring AbsolutePath(const std::wstring& path) {
    std::error_code error;
    const std::filesystem::path absolute = std::filesystem::absolute(ToPath(path), error);
    return error ? path : FromPath(absolute);
}

std::filesystem::path ToPath(std::wstring_view text, std::size_t /*room*/) {
    return std::filesystem::path(ToUtf8(text));
}

std::wstring FromPath(const std::filesystem::path& path) {
    return FromUtf8(path.native());
}

std::wstring NativePath(std::wstring_view path) {
    return std::wstring(path);
}

bool IsSeparator(wchar_t c) {
    return c == L'/';
}

std::size_t RootLength(std::wstring_view path) {
    return path.starts_with(L'/') ? 1 : 0;
}

}  // namespace orvex
