#pragma once
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <map>
#include <set>
#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "settings/RegistryKey.h"
#include "settings/SqliteConnection.h"
#include "settings/StoreFiles.h"

namespace orvex {

/// A user's file is hidden from others and is reset, with a copy kept, if it is corrupt; what is no such file
/// is renamed. The machine's can be read by all and is left to its administrator.
enum class ValueFileOwner { User, Machine };

/// Small typed values by key and name (both compared without regard to the case of ASCII letters) in one
/// SQLite file that many processes may use at once. The first Store creates the file and its folder; the file
/// is open during a call only. No call takes longer than a second or throws; failures are logged once. One
/// thread at a time.
///
/// What a user's file cannot take for now (others hold its lock, or something else has its name and cannot be
/// renamed) is kept in memory, where Find sees it, and written by the next call or at the end.
///
/// A rollback journal, not a write-ahead log: it needs no right to write beside the file when reading (the
/// machine's file), works on network homes and leaves nothing beside a closed file. Waiting for a writer
/// costs milliseconds with values this small.
class ValueFile {
  public:
    struct Value {
        std::int64_t type = 0;
        std::vector<std::byte> data;
    };

    ValueFile(const std::filesystem::path& file, ValueFileOwner owner);
    /// Writes what is kept in memory; waits up to five seconds for others.
    ~ValueFile();
    ValueFile(const ValueFile&) = delete;
    ValueFile& operator=(const ValueFile&) = delete;

    /// Reads a value of any type; `value` is unchanged unless Ok. A missing file counts as an empty one.
    RegistryStatus Find(std::wstring_view key, std::wstring_view name, Value& value);
    /// Replaces a value by one of up to a megabyte, completely or not at all.
    RegistryStatus Store(std::wstring_view key, std::wstring_view name, std::int64_t type,
                         std::span<const std::byte> data);

  private:
    using Attempt = std::function<int(const SqliteLimits&)>;

    using Place = std::pair<std::string, std::string>;  ///< key and name
    struct IsBefore {
        bool operator()(const Place& a, const Place& b) const;
    };
    using Values = std::map<Place, Value, IsBefore>;

    int Try(const Attempt& attempt, const char* doing, const SqliteLimits& limits);
    int TryFind(const SqliteLimits& limits, std::string_view key, std::string_view name, Value& value);
    int TryStore(const SqliteLimits& limits, const Values& values);
    int RunStore(SqliteConnection& connection, FolderLock& turn, const Values& values);
    int WriteWaiting(const SqliteLimits& limits);
    bool IsUsable(StoreFileKind kind);
    StoreReaders Readers() const;
    bool Repair(int result, const SqliteLimits& limits);
    SqliteLimits Limits() const;
    void Warn(const std::string& line);

    std::filesystem::path file_;
    std::filesystem::path folder_;
    ValueFileOwner owner_;
    std::string failure_;  ///< of the last attempt
    Values waiting_;       ///< to be written
    std::set<std::string> logged_;
    std::chrono::steady_clock::time_point noWaitUntil_;
};

}  // namespace orvex
