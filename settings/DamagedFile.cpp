#include "settings/DamagedFile.h"

#include <string>

#include "settings/FolderLock.h"
#include "settings/StoreFiles.h"

namespace orvex {
namespace {

namespace fs = std::filesystem;

constexpr int kMostKept = 1000;
constexpr std::uintmax_t kLargestKept = 64U << 20;  // copied within a call's time on any disk

fs::path FreeNameFor(const fs::path& file) {
    for (int number = 1; number <= kMostKept; ++number) {
        fs::path name = file;
        name += ".damaged-" + std::to_string(number);
        if (IsFreeName(name)) {
            return name;
        }
    }
    return {};
}

/// Opens a file as if it were empty, whatever is in it.
void TakeAsEmpty(const SqliteConnection& connection) {
    if (connection.OpenResult() == SQLITE_OK) {
        sqlite3_db_config(connection.Handle(), SQLITE_DBCONFIG_RESET_DATABASE, 1, nullptr);
    }
}

/// Waits for the writer that is at work; false when the file cannot be written at all.
bool CanBeWritten(const fs::path& file, const SqliteLimits& limits) {
    SqliteConnection connection(file, SqliteConnection::Mode::Existing, limits);
    TakeAsEmpty(connection);
    // Where only reading is possible the statement succeeds and locks nothing.
    return connection.Execute("BEGIN IMMEDIATE") == SQLITE_OK &&
           sqlite3_db_readonly(connection.Handle(), "main") == 0;
}

bool Empty(const fs::path& file, const SqliteLimits& limits) {
    SqliteConnection connection(file, SqliteConnection::Mode::Existing, limits);
    TakeAsEmpty(connection);
    return connection.Execute("VACUUM") == SQLITE_OK;
}

}  // namespace

bool IsDamagedFile(const fs::path& file, const SqliteLimits& limits) {
    const SqliteConnection connection(file, SqliteConnection::Mode::Existing, limits);
    SqliteStatement check(connection, "PRAGMA quick_check(1)");
    const int result = check.Step();
    const int primary = result & 0xFF;
    return primary == SQLITE_CORRUPT || primary == SQLITE_NOTADB ||
           (result == SQLITE_ROW && check.Text(0) != "ok");
}

AfreshResult StartDamagedFileAfresh(const fs::path& file, const SqliteLimits& limits, fs::path& kept) {
    // Writers line up at this lock too, so none begins between the copy and the emptying.
    const FolderLock lock(file.parent_path(), limits.waitUntil);
    if (!lock.IsHeld()) {
        return AfreshResult::Failed;
    }
    if (!IsDamagedFile(file, limits)) {
        return AfreshResult::Sound;
    }
    const fs::path copy = FreeNameFor(file);
    // The copy is made while no connection is open: on Linux, closing any descriptor of a file drops the
    // locks that SQLite has on it in this process.
    if (copy.empty() || !CanBeWritten(file, limits) || !CopyStoreFile(file, copy, kLargestKept)) {
        return AfreshResult::Failed;
    }
    if (!Empty(file, limits)) {
        RemoveStoreFile(copy);
        return AfreshResult::Failed;
    }
    kept = copy;
    return AfreshResult::Emptied;
}

}  // namespace orvex
