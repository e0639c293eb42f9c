#include "settings/SqliteConnection.h"

#include <algorithm>
#include <thread>

#include "settings/StoreFiles.h"
#include "support/Files.h"
#include "support/LDataError.h"
#include "support/Text.h"

namespace orvex {
namespace {

using Clock = std::chrono::steady_clock;

constexpr int kLongestValue = 1 << 20;
constexpr int kStepsBetweenChecks = 1000;

// SQLite's own busy timeout starts anew with every statement; this one ends for all of them together.
int OnBusy(void* limits, int attempt) {
    const auto now = Clock::now();
    const auto until = static_cast<const SqliteLimits*>(limits)->waitUntil;
    if (now >= until) {
        return 0;
    }
    const Clock::duration pause = std::chrono::microseconds(200 * (1 + attempt % 8));
    std::this_thread::sleep_for(std::min(pause, until - now));
    return 1;
}

// A damaged tree can lead a search in circles.
int OnProgress(void* limits) {
    return Clock::now() >= static_cast<const SqliteLimits*>(limits)->workUntil ? 1 : 0;
}

constexpr int kMostCopies = 1000;
constexpr std::uintmax_t kLargestCopy = 64U << 20;  // copied within a call's time on any disk

std::filesystem::path FreeNameFor(const std::filesystem::path& file) {
    for (int number = 1; number <= kMostCopies; ++number) {
        std::filesystem::path name = file;
        name += ".damaged-" + std::to_string(number);
        if (IsFreeName(name)) {
            return name;
        }
    }
    return {};
}

/// Renames a file that has no journal; null if that fails.
std::filesystem::path Rename(const std::filesystem::path& file) {
    std::filesystem::path name = FreeNameFor(file);
    bool taken = false;
    for (const char* journal : {"-journal", "-wal"}) {
        std::filesystem::path beside = file;
        taken = taken || !IsFreeName(beside += journal);
    }
    if (taken || name.empty() || RenameToFreeName(FromPath(file), FromPath(name), taken) != 0) {
        return {};
    }
    return name;
}

/// Makes SQLite treat a file as empty, whatever is in it.
void TreatAsEmpty(const SqliteConnection& connection) {
    if (connection.OpenResult() == SQLITE_OK) {
        sqlite3_db_config(connection.Handle(), SQLITE_DBCONFIG_RESET_DATABASE, 1, nullptr);
    }
}

/// Waits for a writer at work; false if the file cannot be written at all.
bool CanBeWritten(const std::filesystem::path& file, const SqliteLimits& limits) {
    SqliteConnection connection(file, SqliteConnection::Mode::Existing, limits);
    TreatAsEmpty(connection);
    // Where only reading is possible the statement succeeds and locks nothing.
    return connection.Execute("BEGIN IMMEDIATE") == SQLITE_OK &&
           sqlite3_db_readonly(connection.Handle(), "main") == 0;
}

bool Empty(const std::filesystem::path& file, const SqliteLimits& limits) {
    SqliteConnection connection(file, SqliteConnection::Mode::Existing, limits);
    TreatAsEmpty(connection);
    return connection.Execute("VACUUM") == SQLITE_OK;
}

}  // namespace

bool IsCorruption(int result) {
    const int primary = result & 0xFF;
    return primary == SQLITE_CORRUPT || primary == SQLITE_NOTADB;
}

SqliteConnection::SqliteConnection(const std::filesystem::path& file, Mode mode, const SqliteLimits& limits)
    : limits_(limits) {
    const int flags =
        SQLITE_OPEN_READWRITE | SQLITE_OPEN_NOMUTEX | (mode == Mode::Create ? SQLITE_OPEN_CREATE : 0);
    sqlite3* handle = nullptr;
    openResult_ = sqlite3_open_v2(SqliteNameOf(file).c_str(), &handle, flags, SqliteFileSystem());
    handle_.reset(handle);  // also of a failed attempt, for its error text
    if (openResult_ != SQLITE_OK) {
        return;
    }
    sqlite3_extended_result_codes(handle, 1);
    sqlite3_limit(handle, SQLITE_LIMIT_LENGTH, kLongestValue);
    sqlite3_busy_handler(handle, &OnBusy, &limits_);
    sqlite3_progress_handler(handle, kStepsBetweenChecks, &OnProgress, &limits_);
}

int SqliteConnection::Execute(const char* sql) {
    return openResult_ == SQLITE_OK ? sqlite3_exec(handle_.get(), sql, nullptr, nullptr, nullptr)
                                    : openResult_;
}

bool SqliteConnection::HasTable(const char* table) const {
    return openResult_ == SQLITE_OK &&
           sqlite3_table_column_metadata(handle_.get(), nullptr, table, nullptr, nullptr, nullptr, nullptr,
                                         nullptr, nullptr) == SQLITE_OK;
}

std::string SqliteConnection::ErrorText() const {
    return handle_ ? sqlite3_errmsg(handle_.get()) : sqlite3_errstr(openResult_);
}

SqliteStatement::SqliteStatement(const SqliteConnection& connection, const char* sql)
    : result_(connection.OpenResult()) {
    if (result_ == SQLITE_OK) {
        sqlite3_stmt* handle = nullptr;
        result_ = sqlite3_prepare_v2(connection.Handle(), sql, -1, &handle, nullptr);
        handle_.reset(handle);
    }
}

void SqliteStatement::BindText(int parameter, std::string_view text) {
    if (handle_) {
        Keep(sqlite3_bind_text64(handle_.get(), parameter, text.data(), text.size(), SQLITE_STATIC,
                                 SQLITE_UTF8));
    }
}

void SqliteStatement::BindBlob(int parameter, std::span<const std::byte> bytes) {
    if (handle_) {
        // A null pointer would bind NULL, which is not an empty value.
        Keep(bytes.empty()
                 ? sqlite3_bind_zeroblob(handle_.get(), parameter, 0)
                 : sqlite3_bind_blob64(handle_.get(), parameter, bytes.data(), bytes.size(), SQLITE_STATIC));
    }
}

void SqliteStatement::BindInteger(int parameter, std::int64_t value) {
    if (handle_) {
        Keep(sqlite3_bind_int64(handle_.get(), parameter, value));
    }
}

int SqliteStatement::Step() {
    return result_ == SQLITE_OK ? sqlite3_step(handle_.get()) : result_;
}

std::string SqliteStatement::Text(int column) const {
    const auto* text = reinterpret_cast<const char*>(sqlite3_column_text(handle_.get(), column));
    return text == nullptr ? std::string() : std::string(text);
}

std::vector<std::byte> SqliteStatement::Blob(int column) const {
    const auto* bytes = static_cast<const std::byte*>(sqlite3_column_blob(handle_.get(), column));
    const int size = sqlite3_column_bytes(handle_.get(), column);
    return bytes == nullptr ? std::vector<std::byte>() : std::vector<std::byte>(bytes, bytes + size);
}

bool IsCorruptDatabase(const std::filesystem::path& file, const SqliteLimits& limits) {
    const SqliteConnection connection(file, SqliteConnection::Mode::Existing, limits);
    SqliteStatement check(connection, "PRAGMA quick_check(1)");
    const int result = check.Step();
    return IsCorruption(result) || (result == SQLITE_ROW && check.Text(0) != "ok");
}

bool IsForeign(const SqliteConnection& connection, const char* query) {
    SqliteStatement any(connection, "SELECT 1 FROM sqlite_master LIMIT 1");
    return (SqliteStatement(connection, query).Result() & 0xFF) == SQLITE_ERROR && any.Step() == SQLITE_ROW;
}

std::filesystem::path SetAsideForeignFile(const std::filesystem::path& file, const char* query,
                                          const SqliteLimits& limits) {
    const FolderLock lock(file.parent_path(), limits.waitUntil);
    if (!lock.IsHeld()) {
        throw LDataError(FromPath(file) + L": its folder stays locked");
    }
    const StoreFileKind kind = KindOfStoreFile(file, limits.waitUntil);
    const bool isStill = kind == StoreFileKind::Other ||
                         (kind == StoreFileKind::Regular &&
                          IsForeign(SqliteConnection(file, SqliteConnection::Mode::Existing, limits), query));
    if (!isStill) {
        return {};
    }
    std::filesystem::path name = Rename(file);
    if (name.empty()) {
        throw LDataError(FromPath(file) + L": it cannot be renamed");
    }
    return name;
}

std::filesystem::path ResetCorruptDatabase(const std::filesystem::path& file, const SqliteLimits& limits) {
    // Writers queue at this lock too, so none begins between the copy and the emptying.
    const FolderLock lock(file.parent_path(), limits.waitUntil);
    if (!lock.IsHeld()) {
        throw LDataError(FromPath(file) + L": its folder stays locked");
    }
    if (!IsCorruptDatabase(file, limits)) {
        return {};
    }
    if (FileSizeOf(FromPath(file)).value_or(0) > kLargestCopy) {
        if (std::filesystem::path renamed = Rename(file); !renamed.empty()) {
            return renamed;
        }
    }
    std::filesystem::path copy = FreeNameFor(file);
    // The copy is made while no connection is open: on Linux, closing any descriptor of a file drops the
    // locks that SQLite has on it in this process.
    if (copy.empty() || !CanBeWritten(file, limits) || !CopyStoreFile(file, copy, kLargestCopy)) {
        throw LDataError(FromPath(file) + L": no copy can be kept of the damaged file");
    }
    if (!Empty(file, limits)) {
        RemoveFile(FromPath(copy));
        throw LDataError(FromPath(file) + L": the damaged file cannot be emptied");
    }
    return copy;
}

}  // namespace orvex
