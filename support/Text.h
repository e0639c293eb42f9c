#pragma once
// Conversions between the component's wide texts (UTF-16 on Windows, UTF-32 elsewhere) and UTF-8. Lossless
// both ways: bytes that are no UTF-8 become lone surrogates U+DC80 to U+DCFF and come back as the same bytes,
// so that any file name survives; a lone surrogate of other origin is written as its three-byte form. Nothing
// here throws on bad input.
#include <filesystem>
#include <string>
#include <string_view>

#include "orvexcommon/StringLibrary.h"

namespace orvex {

std::string ToUtf8(std::wstring_view text);
std::wstring FromUtf8(std::string_view bytes);
/// UTF-8 that every reader accepts: each byte that is not part of a well-formed character becomes U+FFFD.
std::string ValidUtf8(std::string_view bytes);

/// The path as the system's calls and the standard streams take it. On Windows a path of 248 characters or
/// more becomes absolute (a reason not to join such paths) and gets the prefix "\\?\" or "\\?\UNC\", without
/// which it is too long for them. The C runtime's queries, and with them std::filesystem's, know no such
/// prefix: see support/Files.h.
std::filesystem::path ToPath(std::wstring_view text);
/// The path as users know it: native separators, no prefix.
std::wstring FromPath(const std::filesystem::path& path);
/// The same path with the system's own separators and without the prefix for long paths: what is shown and
/// what enters results. On Windows "/" becomes "\"; elsewhere nothing changes.
std::wstring NativePath(std::wstring_view path);

/// The characters of a text: where wchar_t has 16 bits, a pair of surrogates is one.
std::size_t CountCharacters(std::wstring_view text);
/// `length`, or one less where that would cut a pair of surrogates apart.
std::size_t WholeLength(std::wstring_view text, std::size_t length);

/// Upper case of each character, independent of the process's locale.
std::wstring ToUpper(std::wstring_view text);
/// Equal without regard to letter case.
bool EqualNoCase(std::wstring_view a, std::wstring_view b);

/// The last component of a path; both "/" and "\" separate on Windows, "/" elsewhere.
std::wstring FileNameOf(std::wstring_view path);
/// The path without its last component and without a trailing separator (a root keeps its own: "/", "C:\",
/// "\\server\share\").
std::wstring FolderOf(std::wstring_view path);
/// The extension with its dot, upper-cased: ".LAS"; empty when there is none.
std::wstring UpperExtensionOf(std::wstring_view path);
/// The path with its extension replaced (`extension` with its dot).
std::wstring WithExtension(std::wstring_view path, std::wstring_view extension);

/// The key under which a path is compared with the paths already listed: the full native path, upper-cased.
std::wstring PathKey(std::wstring_view path);

/// A string-library id. Written as 13558_lsid, so that a test finds every id that the code uses.
struct StringId {
    unsigned value = 0;
    friend constexpr bool operator==(StringId, StringId) = default;
};
constexpr StringId operator""_lsid(unsigned long long value) {
    return StringId{static_cast<unsigned>(value)};
}

/// The library's text of an id; empty for id 0.
inline std::wstring Text(StringId id) {
    return id.value == 0 ? std::wstring() : std::wstring(LSwchar(id.value));
}

}  // namespace orvex
