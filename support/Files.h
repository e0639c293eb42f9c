#pragma once
// Files and folders by name, of any length (std::filesystem goes through the C runtime on Windows, which
// refuses long names), and the system's errors.
#include <chrono>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <optional>
#include <ratio>
#include <string>
#include <utility>

namespace orvex {

/// Result of a system call: 0 for success, else the system's error number (errno, GetLastError).
using SystemError = int;

/// The system's text for an error number, in the user's language, without a line end.
std::wstring SystemErrorText(SystemError error);

/// Why the last operation of a standard stream failed; to be called right after the failure. Never 0: a
/// general input/output error if the reason is not known.
SystemError LastStreamError();
/// Clears earlier reasons; to be called before the operation that LastStreamError is asked about.
void ForgetStreamError();

/// Kind of what a path names; links are followed.
enum class FileKind {
    Missing,  ///< nothing, or a broken link
    File,     ///< a regular file
    Folder,
    Other,     ///< a pipe, a device ...
    NoAccess,  ///< unknown: no permission to look, or links in a circle
};
FileKind KindOf(const std::wstring& path);
inline bool FileExists(const std::wstring& path) {
    return KindOf(path) == FileKind::File;
}
inline bool FolderExists(const std::wstring& path) {
    return KindOf(path) == FileKind::Folder;
}
/// True if the folder exists and this process may create files in it.
bool CanCreateFilesIn(const std::filesystem::path& folder);

/// Size in bytes; nullopt if there is no such file.
std::optional<std::uint64_t> FileSizeOf(const std::wstring& path);

/// Time on the system clock, in steps of 100 nanoseconds.
using FileTime = std::chrono::sys_time<std::chrono::duration<std::int64_t, std::ratio<1, 10'000'000>>>;
/// Modification time; nullopt if there is no such file or folder.
std::optional<FileTime> LastWriteTime(const std::wstring& path);
/// The same in milliseconds since 1970-01-01 UTC; 0 when unknown.
inline std::int64_t ModifiedMs(const std::wstring& path) {
    const auto time = LastWriteTime(path);
    return time ? std::chrono::floor<std::chrono::milliseconds>(*time).time_since_epoch().count() : 0;
}
/// Copies the modification time.
SystemError CopyLastWriteTime(const std::wstring& from, const std::wstring& to);

/// True if both paths name one existing file.
bool IsSameFile(const std::wstring& a, const std::wstring& b);
/// The path with links resolved, unique per folder; the path itself if that fails.
std::wstring CanonicalPath(const std::wstring& path);

/// Renames a file within its volume, replacing the target. Windows does not replace a file that is open or
/// mapped anywhere: ERROR_SHARING_VIOLATION.
SystemError RenameFile(const std::wstring& from, const std::wstring& to);
/// Renames a file within its volume unless the target exists; `taken` tells whether that was the failure.
SystemError RenameToFreeName(const std::wstring& from, const std::wstring& to, bool& taken);
/// Removes a file or an empty folder.
SystemError RemoveFile(const std::wstring& path);
/// Creates a folder and its missing parents.
SystemError CreateFolders(const std::wstring& path);

/// A file that this process has made and others can tell from one that a killed process has left: it stays
/// locked until this object is destroyed or the process ends in any way. Move-only.
class OwnedFile {
  public:
    OwnedFile() = default;
    OwnedFile(OwnedFile&& other) noexcept : handle_(std::exchange(other.handle_, kNone)) {}
    OwnedFile& operator=(OwnedFile other) noexcept {
        std::swap(handle_, other.handle_);
        return *this;
    }
    ~OwnedFile();

    /// Makes an empty file; it may be opened for writing, renamed and removed meanwhile. An error if the name
    /// is taken.
    SystemError Create(const std::wstring& path);
    /// Removes a file that no process owns. Where the file system has no locks, nothing is removed.
    static void RemoveIfAbandoned(const std::wstring& path);

  private:
    static constexpr std::intptr_t kNone = -1;

    std::intptr_t handle_ = kNone;
};

/// Bytes that this user may still write to the folder's volume; nullopt if unknown.
std::optional<std::uint64_t> FreeSpaceIn(const std::wstring& folder);

struct FolderEntry {
    std::wstring path;
    FileKind kind = FileKind::Missing;
    bool isLink = false;  ///< a link or a mount point, which may form a cycle
};
/// Calls `visit` for every entry of a folder, in no order, until it returns false. An error ends the listing
/// early.
SystemError ListFolder(const std::wstring& folder, const std::function<bool(FolderEntry entry)>& visit);

}  // namespace orvex
