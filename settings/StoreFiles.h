#pragma once
// File-system access for a file of stored values, beside SQLite's own: kinds, copies, access rights and the
// lock of its folder. Paths are absolute and fit for system calls (see ToPath). Nothing throws but
// std::bad_alloc.
#include <chrono>
#include <cstdint>
#include <filesystem>
#include <memory>
#include <string>

namespace orvex {

enum class StoreFileKind {
    Nothing,   ///< no such name
    Regular,   ///< a readable regular file
    Other,     ///< a folder, a pipe, a device, links in a circle
    NoAccess,  ///< unknown, or not readable
    Busy,      ///< another program has the file open exclusively (Windows)
};

/// Kind of what a path names, links followed. Waits until the given time for a file that is Busy.
StoreFileKind KindOfStoreFile(const std::filesystem::path& file, std::chrono::steady_clock::time_point until);

/// True if nothing, not even a broken link, has that name.
bool IsFreeName(const std::filesystem::path& file);

/// Copies a file of at most `largest` bytes, completely or not at all.
bool CopyStoreFile(const std::filesystem::path& file, const std::filesystem::path& copy,
                   std::uintmax_t largest);

/// Who may use a new file or folder: its owner alone, or everybody for reading. Administrators always may.
enum class StoreReaders { OwnerOnly, Everybody };

/// Creates a folder for `readers`, and its missing parents. An existing one stays as it is.
void MakeStoreFolder(const std::filesystem::path& folder, StoreReaders readers);
/// Sets the rights of a file that has just been created.
void SetStoreFileReaders(const std::filesystem::path& file, StoreReaders readers);

/// The file's name for SQLite, and SQLite's own file system that accepts it (null: the default one).
std::string SqliteNameOf(const std::filesystem::path& file);
const char* SqliteFileSystem();

/// A lock on a folder for one process at a time; it leaves no file there. Released when destroyed, by the
/// thread that created it, and when its process ends in any way.
class FolderLock {
  public:
    /// Waits for the lock until the given time. Counts as held where no such lock is possible, and as not
    /// held if the folder does not exist.
    FolderLock(const std::filesystem::path& folder, std::chrono::steady_clock::time_point until);
    ~FolderLock();
    FolderLock(const FolderLock&) = delete;
    FolderLock& operator=(const FolderLock&) = delete;

    bool IsHeld() const { return isHeld_; }
    void Release();

  private:
    struct System;

    std::unique_ptr<System> system_;  ///< null when released
    bool isHeld_ = false;
};

}  // namespace orvex
