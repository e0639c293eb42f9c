#pragma once
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <set>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "settings/RegistryKey.h"
#include "settings/SqliteConnection.h"
#include "settings/StoreFiles.h"

namespace orvex {

/// A user's file is hidden from others and is reset, with a copy kept, if it is corrupt; the machine's can be
/// read by all and is left to its administrator.
enum class ValueFileOwner { User, Machine };

/// Small typed values by key and name (both compared without regard to the case of ASCII letters) in one
/// SQLite file that many processes may use at once. The first Store creates the file and its folder; the file
/// is open during a call only. No call takes longer than a second or throws; failures are logged once. One
/// thread at a time.
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

    /// Reads a value of any type; `value` is unchanged unless Ok. A missing file counts as an empty one.
    RegistryStatus Find(std::wstring_view key, std::wstring_view name, Value& value);
    /// Replaces a value by one of up to a megabyte, completely or not at all.
    RegistryStatus Store(std::wstring_view key, std::wstring_view name, std::int64_t type,
                         std::span<const std::byte> data);

  private:
    using Attempt = std::function<int(const SqliteLimits&)>;

    int Try(const Attempt& attempt, const char* doing);
    int TryFind(const SqliteLimits& limits, std::string_view key, std::string_view name, Value& value);
    int TryStore(const SqliteLimits& limits, std::string_view key, std::string_view name, std::int64_t type,
                 std::span<const std::byte> data);
    int RunStore(SqliteConnection& connection, FolderLock& turn, std::string_view key, std::string_view name,
                 std::int64_t type, std::span<const std::byte> data);
    bool IsUsable(StoreFileKind kind);
    StoreReaders Readers() const;
    bool Reset(const SqliteLimits& limits);
    SqliteLimits Limits() const;
    void Warn(const std::string& line);

    std::filesystem::path file_;
    std::filesystem::path folder_;
    ValueFileOwner owner_;
    std::string failure_;  ///< of the last attempt
    std::set<std::string> logged_;
    std::chrono::steady_clock::time_point noWaitUntil_;
};

}  // namespace orvex
