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

#include "settings/FolderLock.h"
#include "settings/SqliteConnection.h"
#include "settings/StoreFiles.h"

namespace orvex {

enum class ValueStatus { Ok, NotFound, NoAccess };

/// Whose file it is: a user's own is kept from others and starts afresh (a copy is kept) when it is damaged;
/// a shared one can be read by all and is left to whoever manages it.
enum class ValueFileOwner { User, Machine };

/// Small typed values under a key and a name (both compared without regard to the case of ASCII letters), in
/// one SQLite file that many processes may use at once. The file and its folder are made by the first Store.
/// The file is open during a call only. No call takes longer than a second or throws; what goes wrong is
/// logged once. Not shared between threads.
///
/// The file uses a rollback journal, not a write-ahead log: a reader then needs no right to write beside
/// it (the machine's file), it works on network homes, and nothing stays beside a closed file. Waiting
/// for a writer costs milliseconds with values this small.
class ValueFile {
  public:
    struct Value {
        std::int64_t type = 0;
        std::vector<std::byte> data;
    };

    ValueFile(const std::filesystem::path& file, ValueFileOwner owner);

    /// A value; `value` is untouched unless Ok. No file is the same as an empty one.
    ValueStatus Find(std::wstring_view key, std::wstring_view name, Value& value);
    /// Stores a value of up to a megabyte in place of the old one, completely or not at all.
    ValueStatus Store(std::wstring_view key, std::wstring_view name, std::int64_t type,
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
    bool StartAfresh(const SqliteLimits& limits);
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
