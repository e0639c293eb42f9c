#pragma once
// What a file of stored values needs of the file system beside SQLite, and what the standard library does not
// do with long names on Windows. Nothing throws but what runs out of memory.
#include <chrono>
#include <cstdint>
#include <filesystem>
#include <string>

namespace orvex {

/// The path as the system takes it, however long: on Windows a full one, from 200 characters on with the
/// prefix "\\?\". An empty one stays empty. What follows takes such paths.
std::filesystem::path SystemPathOf(const std::filesystem::path& file);

enum class StoreFileKind {
    Nothing,   ///< there is nothing of that name
    Regular,   ///< a regular file that can be read
    Other,     ///< a folder, a pipe, a device
    NoAccess,  ///< that cannot be found out, or not be read
    Busy,      ///< another program keeps the file to itself (Windows)
};

/// What a name stands for, links followed. Waits until the given time for a file that is Busy.
StoreFileKind KindOfStoreFile(const std::filesystem::path& file, std::chrono::steady_clock::time_point until);

/// True when nothing, not even a link that leads nowhere, has that name.
bool IsFreeName(const std::filesystem::path& file);

/// Copies a file of at most `largest` bytes to a name, completely or not at all.
bool CopyStoreFile(const std::filesystem::path& file, const std::filesystem::path& copy,
                   std::uintmax_t largest);
void RemoveStoreFile(const std::filesystem::path& file);

/// Who may use what is made: its owner alone, or everybody for reading. The system's administrators always
/// may.
enum class StoreReaders { OwnerOnly, Everybody };

/// Makes a folder for `readers`, and those on the way to it. One that exists stays as it is.
void MakeStoreFolder(const std::filesystem::path& folder, StoreReaders readers);
/// Sets the rights of a file that has just been made.
void SetStoreFileReaders(const std::filesystem::path& file, StoreReaders readers);

/// The name by which SQLite opens a file, and the one of its own file systems that takes it (null: the usual
/// one).
std::string SqliteNameOf(const std::filesystem::path& file);
const char* SqliteFileSystem();

}  // namespace orvex
