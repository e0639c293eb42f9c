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

/// How long the statements of a connection may take.
struct SqliteLimits {
    std::chrono::steady_clock::time_point waitUntil;  ///< for locks that other processes hold
    std::chrono::steady_clock::time_point workUntil;  ///< for everything; then SQLITE_INTERRUPT
};

/// One SQLite file, opened for writing if its rights allow, else for reading. Closed, and an unfinished
/// transaction undone, when destroyed. Values and texts are limited to a megabyte. Results are SQLite's
/// extended codes.
class SqliteConnection {
  public:
    enum class Mode { Existing, Create };

    SqliteConnection(const std::filesystem::path& file, Mode mode, const SqliteLimits& limits);
    SqliteConnection(const SqliteConnection&) = delete;
    SqliteConnection& operator=(const SqliteConnection&) = delete;

    /// SQLITE_OK when the file is open. The other functions then work; without it they return the code.
    int OpenResult() const { return openResult_; }
    /// Runs a statement that delivers nothing.
    int Execute(const char* sql);
    bool HasTable(const char* table) const;
    /// The last failure in SQLite's words.
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

    /// SQLITE_OK, or why the statement could not be prepared or a parameter not be bound.
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

}  // namespace orvex
