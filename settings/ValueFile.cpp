#include "settings/ValueFile.h"

#include <utility>

#include "support/Files.h"
#include "support/LDataError.h"
#include "support/Log.h"
#include "support/Text.h"

namespace orvex {
namespace {

using Clock = std::chrono::steady_clock;

constexpr auto kLongestWait = std::chrono::milliseconds(500);
constexpr auto kLongestWork = std::chrono::milliseconds(700);
// After a wait in vain the next calls do not wait, so that a dialog that reads twenty options is held up
// once.
constexpr auto kPauseAfterWait = std::chrono::seconds(3);
constexpr auto kLastWait = std::chrono::seconds(5);
constexpr int kAttempts = 3;
// SQLite and the copies append to the name, so the prefix for long names comes earlier.
constexpr std::size_t kRoomForSuffixes = 48;

constexpr const char* kTable = "stored_value";
constexpr const char* kCreateTable =
    "CREATE TABLE IF NOT EXISTS stored_value ("
    " key TEXT NOT NULL COLLATE NOCASE,"
    " name TEXT NOT NULL COLLATE NOCASE,"
    " type INTEGER NOT NULL,"
    " data BLOB NOT NULL,"
    " PRIMARY KEY (key, name)) WITHOUT ROWID";
constexpr const char* kFind = "SELECT type, data FROM stored_value WHERE key = ?1 AND name = ?2";
constexpr const char* kStore =
    "INSERT INTO stored_value (key, name, type, data) VALUES (?1, ?2, ?3, ?4)"
    " ON CONFLICT (key, name) DO UPDATE SET type = excluded.type, data = excluded.data";

int Primary(int result) {
    return result & 0xFF;
}
bool Succeeded(int result) {
    return result == SQLITE_OK || result == SQLITE_ROW || result == SQLITE_DONE;
}
bool RanOutOfTime(int result) {
    return Primary(result) == SQLITE_BUSY || Primary(result) == SQLITE_INTERRUPT;
}

/// Of a file that is none of this program's stores; no result of SQLite's.
constexpr int kForeign = SQLITE_FORMAT;
constexpr const char* kForeignText = "its tables are another program's";

/// SQLite's result, or kForeign, for a file of a kind that cannot be used.
int ResultFor(StoreFileKind kind) {
    switch (kind) {
        case StoreFileKind::Busy:
            return SQLITE_BUSY;
        case StoreFileKind::Other:
            return kForeign;
        default:
            return SQLITE_CANTOPEN;
    }
}

}  // namespace

ValueFile::ValueFile(const std::filesystem::path& file, ValueFileOwner owner)
    : file_(ToPath(AbsolutePath(FromPath(file)), kRoomForSuffixes)),
      folder_(file_.has_parent_path() ? file_.parent_path() : std::filesystem::path(".")),
      owner_(owner) {}

bool ValueFile::IsBefore::operator()(const Place& a, const Place& b) const {
    const int keys = sqlite3_stricmp(a.first.c_str(), b.first.c_str());
    return keys != 0 ? keys < 0 : sqlite3_stricmp(a.second.c_str(), b.second.c_str()) < 0;
}

ValueFile::~ValueFile() {
    if (!waiting_.empty()) {
        const auto until = Clock::now() + kLastWait;
        WriteWaiting({until, until});
    }
}

RegistryStatus ValueFile::Find(std::wstring_view key, std::wstring_view name, Value& value) {
    if (!waiting_.empty()) {
        WriteWaiting(Limits());
    }
    const Place place(ToUtf8(key), ToUtf8(name));
    if (const auto kept = waiting_.find(place); kept != waiting_.end()) {
        value = kept->second;
        return RegistryStatus::Ok;
    }
    const int result =
        Try([&](const SqliteLimits& limits) { return TryFind(limits, place.first, place.second, value); },
            "read", Limits());
    return result == SQLITE_ROW    ? RegistryStatus::Ok
           : result == SQLITE_DONE ? RegistryStatus::NotFound
                                   : RegistryStatus::NoAccess;
}

RegistryStatus ValueFile::Store(std::wstring_view key, std::wstring_view name, std::int64_t type,
                                std::span<const std::byte> data) {
    const auto place =
        waiting_.insert_or_assign({ToUtf8(key), ToUtf8(name)}, Value{type, {data.begin(), data.end()}}).first;
    const int result = WriteWaiting(Limits());
    if (result == SQLITE_OK) {
        return RegistryStatus::Ok;
    }
    if (owner_ == ValueFileOwner::User && !file_.empty() && (RanOutOfTime(result) || result == kForeign)) {
        return RegistryStatus::Ok;
    }
    waiting_.erase(place);
    return RegistryStatus::NoAccess;
}

int ValueFile::WriteWaiting(const SqliteLimits& limits) {
    const int result =
        Try([&](const SqliteLimits& within) { return TryStore(within, waiting_); }, "written", limits);
    if (result == SQLITE_OK) {
        waiting_.clear();
    }
    return result;
}

int ValueFile::Try(const Attempt& attempt, const char* doing, const SqliteLimits& limits) {
    if (file_.empty()) {
        return SQLITE_CANTOPEN;
    }
    int result = SQLITE_CANTOPEN;
    for (int i = 0; i < kAttempts; ++i) {
        result = attempt(limits);
        if (!Repair(result, limits)) {
            break;
        }
    }
    if (Succeeded(result)) {
        noWaitUntil_ = {};
    } else {
        noWaitUntil_ = RanOutOfTime(result) ? Clock::now() + kPauseAfterWait : noWaitUntil_;
        Warn("cannot be " + std::string(doing) + ": " + failure_);
    }
    return result;
}

int ValueFile::TryFind(const SqliteLimits& limits, std::string_view key, std::string_view name,
                       Value& value) {
    const StoreFileKind kind = KindOfStoreFile(file_, limits.waitUntil);
    if (kind == StoreFileKind::Nothing) {
        return SQLITE_DONE;
    }
    if (!IsUsable(kind)) {
        return ResultFor(kind);
    }
    const SqliteConnection connection(file_, SqliteConnection::Mode::Existing, limits);
    SqliteStatement find(connection, kFind);
    find.BindText(1, key);
    find.BindText(2, name);
    const int result = find.Step();
    if (result == SQLITE_ROW) {
        value = {find.Integer(0), find.Blob(1)};
        return result;
    }
    failure_ = connection.ErrorText();
    if (result == SQLITE_ERROR && IsForeign(connection, kFind)) {
        failure_ = kForeignText;
        return kForeign;
    }
    const bool isEmpty = result == SQLITE_ERROR && !connection.HasTable(kTable);
    const bool hasGone = Primary(result) == SQLITE_CANTOPEN &&
                         KindOfStoreFile(file_, limits.waitUntil) == StoreFileKind::Nothing;
    return isEmpty || hasGone ? SQLITE_DONE : result;
}

int ValueFile::TryStore(const SqliteLimits& limits, const Values& values) {
    const StoreFileKind before = KindOfStoreFile(file_, limits.waitUntil);
    if (before == StoreFileKind::Nothing) {
        MakeStoreFolder(folder_, Readers());
    } else if (!IsUsable(before)) {
        return ResultFor(before);
    }
    // On Windows SQLite would try for more than a second to make a file where it may not.
    if (!CanCreateFilesIn(folder_)) {
        failure_ = "no files can be made in its folder";
        return SQLITE_CANTOPEN;
    }
    // Whoever waits for SQLite's lock polls, and would starve beside a process that writes without pause. So
    // writers line up here first, and a writer that has begun lets the next one to the head of the line.
    FolderLock turn(folder_, limits.waitUntil);
    SqliteConnection connection(file_, SqliteConnection::Mode::Create, limits);
    const int result = RunStore(connection, turn, values);
    failure_ = result == kForeign ? kForeignText : connection.ErrorText();
    if (result != SQLITE_OK) {
        return result;
    }
    if (before == StoreFileKind::Nothing && owner_ == ValueFileOwner::Machine) {
        SetStoreFileReaders(file_, Readers());
    }
    return SQLITE_OK;
}

int ValueFile::RunStore(SqliteConnection& connection, FolderLock& turn, const Values& values) {
    // "BEGIN IMMEDIATE" waits for other writers here, before anything is read, so none is overtaken. With
    // "NORMAL" a power failure cannot cost more than the newest values, and a write waits for fewer flushes.
    for (const char* sql : {"PRAGMA synchronous = NORMAL", "BEGIN IMMEDIATE"}) {
        if (const int result = connection.Execute(sql); result != SQLITE_OK) {
            return result;
        }
    }
    if (IsForeign(connection, kFind)) {
        return kForeign;
    }
    if (const int result = connection.Execute(kCreateTable); result != SQLITE_OK) {
        return result;
    }
    turn.Release();
    for (const auto& [place, value] : values) {
        SqliteStatement store(connection, kStore);
        store.BindText(1, place.first);
        store.BindText(2, place.second);
        store.BindInteger(3, value.type);
        store.BindBlob(4, value.data);
        if (const int result = store.Step(); result != SQLITE_DONE) {
            return result;
        }
    }
    return connection.Execute("COMMIT");
}

bool ValueFile::IsUsable(StoreFileKind kind) {
    switch (kind) {
        case StoreFileKind::Regular:
            return true;
        case StoreFileKind::Busy:
            failure_ = "another program keeps it to itself";
            return false;
        case StoreFileKind::NoAccess:
            failure_ = "no access";
            return false;
        default:
            failure_ = "not a regular file";  // reading from a pipe or a device could wait for ever
            return false;
    }
}

StoreReaders ValueFile::Readers() const {
    return owner_ == ValueFileOwner::User ? StoreReaders::OwnerOnly : StoreReaders::Everybody;
}

/// True if another attempt may succeed.
bool ValueFile::Repair(int result, const SqliteLimits& limits) {
    if (owner_ != ValueFileOwner::User || !(IsCorruption(result) || result == kForeign)) {
        return false;
    }
    try {
        const bool isForeign = result == kForeign;
        const std::filesystem::path kept =
            isForeign ? SetAsideForeignFile(file_, kFind, limits) : ResetCorruptDatabase(file_, limits);
        if (!kept.empty()) {
            Warn((isForeign ? "is no store of this program (" : "is damaged (") + failure_ +
                 "); it starts afresh, what was there is kept as " + ToUtf8(FromPath(kept.filename())));
        }
        return true;
    } catch (const LDataError&) {
        return false;  // the caller logs the failure itself
    }
}

SqliteLimits ValueFile::Limits() const {
    const auto now = Clock::now();
    return {now < noWaitUntil_ ? now : now + kLongestWait, now + kLongestWork};
}

void ValueFile::Warn(const std::string& line) {
    if (logged_.insert(line).second) {
        LogWarning(L"settings: " + FromPath(file_) + L" " + FromUtf8(line));
    }
}

}  // namespace orvex
