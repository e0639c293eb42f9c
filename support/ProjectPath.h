#pragma once
// Folder texts relative to the host's project.
#include <string>

namespace orvex {

/// Placeholder for the project's folder at the start of a folder text.
inline constexpr const wchar_t* kProjectPathToken = L"<ORVEX_PROJECT_PATH>";

/// Puts the token at the start of a folder text, in place of everything up to the first ":" if there is one
/// ("C:\Data" gives the token and "\Data"); no separator is added. A text that contains the token is returned
/// unchanged.
std::wstring InsertProjectPathToken(const std::wstring& folderText);

/// Folder that a text stands for. Environment variables ("%NAME%", "$NAME", "${NAME}") are replaced by their
/// values; one that is not set stays as it is. The token is replaced by `projectFolder` (with or without a
/// trailing separator) and exactly one separator, and every "\" and "/" after it becomes the system's own
/// separator. A text without the token only gets the system's separators (see NativePath). Throws LDataError
/// if the token is used and `projectFolder` is empty, or if the token is not at the start.
std::wstring ResolveProjectPath(const std::wstring& folderText, const std::wstring& projectFolder);

/// The same folder for files to be written to, created with its parents if it is missing. Empty if the text
/// gives no full path or the folder cannot be made or written to; the reason is logged.
std::wstring MakeWritableFolder(const std::wstring& folderText, const std::wstring& projectFolder);

/// Appends the system's separator unless the folder ends with "\" or "/".
std::wstring WithTrailingSeparator(std::wstring folder);

}  // namespace orvex
