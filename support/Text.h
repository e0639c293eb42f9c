#pragma once
// Wide texts (UTF-16 on Windows, UTF-32 elsewhere), their conversion to and from UTF-8, paths as texts, and
// the string library. The conversion is lossless both ways, so that any file name survives: bytes that are
// not UTF-8 become lone surrogates U+DC80 to U+DCFF and are written as the same bytes; any other lone
// surrogate is written in its three-byte form. Nothing here throws on bad input.
#include <cstddef>
#include <filesystem>
#include <string>
#include <string_view>

#include "orvexcommon/TextIds.h"

namespace orvex {

std::string ToUtf8(std::wstring_view text);
std::wstring FromUtf8(std::string_view bytes);
/// UTF-8 that every reader accepts: each byte that is not part of a well-formed character becomes U+FFFD.
std::string ValidUtf8(std::string_view bytes);

/// Path for system calls and standard streams. On Windows a path of 248 characters or more, counting `room`
/// for what will be appended to it, becomes absolute (a reason not to join such paths) and gets the prefix
/// "\\?\" or "\\?\UNC\", without which it is too long for them. The C runtime's queries, and with them
/// std::filesystem's, do not accept the prefix: see support/Files.h.
std::filesystem::path ToPath(std::wstring_view text, std::size_t room = 0);
/// Absolute form of a path; the path itself if it has none, such as an empty one. On Windows also without "."
/// and "..", by text only.
std::wstring AbsolutePath(const std::wstring& path);
/// Path as users know it: native separators, no prefix.
std::wstring FromPath(const std::filesystem::path& path);
/// The same path with the system's own separators and without the long-path prefix: the form that is shown
/// and that enters results. On Windows "/" becomes "\"; elsewhere nothing changes.
std::wstring NativePath(std::wstring_view path);

/// "/", on Windows also "\".
bool IsSeparator(wchar_t c);
/// Length of a path's root with its separator ("/", "C:\", "\\server\share\"); 0 for a relative path.
std::size_t RootLength(std::wstring_view path);

/// Number of characters; a surrogate pair (Windows) counts as one.
std::size_t CountCharacters(std::wstring_view text);
/// `length`, or one less if the cut would fall inside a surrogate pair.
std::size_t WholeLength(std::wstring_view text, std::size_t length);

/// Upper case, character by character, whatever the process's locale.
std::wstring ToUpper(std::wstring_view text);
/// Case-insensitive equality.
bool EqualNoCase(std::wstring_view a, std::wstring_view b);

/// The text with blanks for its control characters except `kept`: the name of a file must not drive a
/// terminal.
std::wstring WithoutControls(std::wstring text, std::wstring_view kept = {});

/// Last component of a path.
std::wstring FileNameOf(std::wstring_view path);
/// The path without its last component and without a trailing separator (a root keeps its own: "/", "C:\",
/// "\\server\share\").
std::wstring FolderOf(std::wstring_view path);
/// Extension with its dot in upper case (".LAS"); empty if none.
std::wstring UpperExtensionOf(std::wstring_view path);
/// The path with its extension replaced (`extension` with its dot).
std::wstring WithExtension(std::wstring_view path, std::wstring_view extension);

/// Key for comparing a path with those already listed: the native path in upper case.
std::wstring PathKey(std::wstring_view path);

/// The string library's text, as in Text(text::kLasTab); empty for id 0.
inline std::wstring Text(StringId id) {
    return id.value == 0 ? std::wstring() : std::wstring(LSwchar(id.value));
}

}  // namespace orvex
