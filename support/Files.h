#pragma once
// Files by their names, however long these are. What std::filesystem has for this goes through the C runtime
// on Windows, which refuses long names.
#include <chrono>
#include <cstdint>
#include <functional>
#include <optional>
#include <ratio>
#include <string>

#include "support/SystemError.h"

namespace orvex {

/// What a path names; links are followed.
enum class FileKind {
    Missing,  ///< nothing, a link to nothing, or what this process may not look at
    File,     ///< a regular file
    Folder,
    Other,  ///< a pipe, a device ...
};
FileKind KindOf(const std::wstring& path);
inline bool FileExists(const std::wstring& path) {
    return KindOf(path) == FileKind::File;
}
inline bool FolderExists(const std::wstring& path) {
    return KindOf(path) == FileKind::Folder;
}

/// Size of a file in bytes; none when there is no such file.
std::optional<std::uint64_t> FileSizeOf(const std::wstring& path);

/// A time of the system clock, in steps of 100 nanoseconds.
using FileTime = std::chrono::sys_time<std::chrono::duration<std::int64_t, std::ratio<1, 10'000'000>>>;
/// When the content was last written; none when there is no such file or folder.
std::optional<FileTime> LastWriteTime(const std::wstring& path);
/// Gives `to` the time of last writing that `from` has.
SystemError CopyLastWriteTime(const std::wstring& from, const std::wstring& to);

/// True when both paths name one existing file.
bool IsSameFile(const std::wstring& a, const std::wstring& b);
/// The one name of a folder that links and other spellings lead to; the path itself when it cannot be had.
std::wstring CanonicalPath(const std::wstring& path);

/// Renames a file within its volume, replacing what has the new name. Windows replaces no file that anybody
/// holds open or mapped: that gives ERROR_SHARING_VIOLATION.
SystemError RenameFile(const std::wstring& from, const std::wstring& to);
/// Renames a file within its volume unless something has the new name; `taken` says whether that was what
/// failed.
SystemError RenameToFreeName(const std::wstring& from, const std::wstring& to, bool& taken);
/// Removes a file or an empty folder.
SystemError RemoveFile(const std::wstring& path);
/// Makes a folder and those above it that are missing.
SystemError CreateFolders(const std::wstring& path);

/// Bytes that this user may still write to the volume of a folder; none when the system does not tell.
std::optional<std::uint64_t> FreeSpaceIn(const std::wstring& folder);

struct FolderEntry {
    std::wstring path;
    FileKind kind = FileKind::Missing;
    bool isLink = false;  ///< a link or a mount point, which can lead in circles
};
/// Visits what a folder holds, in no order, until `visit` returns false. The error ends the listing early.
SystemError ListFolder(const std::wstring& folder, const std::function<bool(FolderEntry entry)>& visit);

}  // namespace orvex
