#pragma once
// Folders that stand for a place in the host's project, wherever that project lies.
#include <string>

namespace orvex {

/// Stands for the folder of the host's project at the head of a folder's text.
inline constexpr const wchar_t* kProjectPathToken = L"<ORVEX_PROJECT_PATH>";

/// The text with the token at its head, followed by what is behind the first ":" ("C:\Data" gives the token
/// and "\Data"), or by the whole text when it has none; no separator is added. A text that holds the token
/// already comes back as it is.
std::wstring InsertProjectPathToken(const std::wstring& folderText);

/// The folder that a text stands for. The token gives way to `projectFolder` (with or without a trailing
/// separator), with exactly one separator between it and what follows, and "\" and "/" behind it both become
/// the system's own separator. A text without the token only gets the system's separators (see NativePath).
/// Throws LDataError in plain words when the token is used and `projectFolder` is empty, or when the token is
/// not at the head.
std::wstring ResolveProjectPath(const std::wstring& folderText, const std::wstring& projectFolder);

/// The folder with the system's separator behind it, unless it ends with "\" or "/".
std::wstring WithTrailingSeparator(std::wstring folder);

}  // namespace orvex
