#pragma once
#include <sqlite3.h>

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace orvex {

/// Time limits of a connection's statements.
struct SqliteLimits {
    std::chrono::steady_clock::time_point waitUntil;  ///< for locks of other processes
    std::chrono::steady_clock::time_point workUntil;  ///< for all statements; then SQLITE_INTERRUPT
};

/// An SQLite file, opened for writing if its rights allow, else for reading. Destruction rolls an unfinished
/// transaction back and closes the file. Values and texts are limited to a megabyte. Results are SQLite's
/// extended codes.
class SqliteConnection {
  public:
    enum class Mode { Existing, Create };

    SqliteConnection(const std::filesystem::path& file, Mode mode, const SqliteLimits& limits);
    SqliteConnection(const SqliteConnection&) = delete;
    SqliteConnection& operator=(const SqliteConnection&) = delete;

    /// SQLITE_OK if the file is open, else the code that every other function returns.
    int OpenResult() const { return openResult_; }
    /// Runs a statement without results.
    int Execute(const char* sql);
    bool HasTable(const char* table) const;
    /// SQLite's text for the last failure.
    std::string ErrorText() const;

    sqlite3* Handle() const { return handle_.get(); }

  private:
    struct Close {
        void operator()(sqlite3* handle) const { sqlite3_close_v2(handle); }
    };

    SqliteLimits limits_;
    std::unique_ptr<sqlite3, Close> handle_;
    int openResult_ = SQLITE_OK;
};

/// A prepared statement. Parameters count from 1, columns from 0.
class SqliteStatement {
  public:
    SqliteStatement(const SqliteConnection& connection, const char* sql);

    /// SQLITE_OK, or why preparing or binding failed.
    int Result() const { return result_; }
    /// The bytes must live until the statement has been stepped.
    void BindText(int parameter, std::string_view text);
    void BindBlob(int parameter, std::span<const std::byte> bytes);
    void BindInteger(int parameter, std::int64_t value);
    /// SQLITE_ROW, SQLITE_DONE, or a failure (also one of Result).
    int Step();

    std::int64_t Integer(int column) const { return sqlite3_column_int64(handle_.get(), column); }
    std::string Text(int column) const;
    std::vector<std::byte> Blob(int column) const;

  private:
    struct Finalize {
        void operator()(sqlite3_stmt* handle) const { sqlite3_finalize(handle); }
    };

    void Keep(int result) { result_ = result_ == SQLITE_OK ? result : result_; }

    std::unique_ptr<sqlite3_stmt, Finalize> handle_;
    int result_ = SQLITE_OK;
};

/// True if the database has tables, but not those of the query: it is another program's.
bool IsForeign(const SqliteConnection& connection, const char* query);

/// True for SQLite's results that mean a corrupt file.
bool IsCorruption(int result);

/// True if the file is not an intact SQLite file; false also if that cannot be checked now.
bool IsCorruptDatabase(const std::filesystem::path& file, const SqliteLimits& limits);

/// Copies a corrupt SQLite file to "NAME.damaged-1" (or the next free number) and empties it under SQLite's
/// own locks. It is not renamed: a process that still has it open would take the journal of the new file for
/// the renamed one's, and play it back. Only one that is too large for a copy is renamed, if it has no
/// journal. Returns the copy; an empty path if another process has reset the file meanwhile. Throws
/// LDataError if it cannot be reset: no rights, no space or no time.
std::filesystem::path ResetCorruptDatabase(const std::filesystem::path& file, const SqliteLimits& limits);

/// Renames what is no store of this program, as ResetCorruptDatabase names its copies: a folder, a link that
/// leads nowhere, or a database that IsForeign. Returns the new name; an empty path if another process has
/// done it meanwhile. Throws LDataError if it cannot be renamed, or has a journal that belongs to its present
/// name.
std::filesystem::path SetAsideForeignFile(const std::filesystem::path& file, const char* query,
                                          const SqliteLimits& limits);

}  // namespace orvex
