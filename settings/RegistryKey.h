#pragma once
#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <memory>
#include <span>
#include <string>
#include <vector>

namespace orvex {

/// The current user's store, and the machine's, which ordinary users can only read.
enum class RegistryRoot { CurrentUser, LocalMachine };

/// Types of stored values; the numbers are those of the registry (REG_SZ, REG_BINARY, REG_DWORD).
enum class RegistryType : std::uint32_t { String = 1, Binary = 3, Dword = 4 };

enum class RegistryStatus { Ok, NotFound, WrongType, NoAccess };

/// In bytes. Longer values are neither stored nor read (NoAccess).
inline constexpr std::size_t kLongestRegistryValue = 1000000;

/// An open key of a store, which must outlive it; closed when destroyed. Names are compared without regard to
/// the case of ASCII letters. One thread at a time; nothing throws.
class RegistryKey {
  public:
    virtual ~RegistryKey() = default;

    /// Reads a value as stored, whatever its length; texts with or without a terminating zero. WrongType if
    /// it is stored with another type. `data` is unchanged unless Ok.
    virtual RegistryStatus Query(const std::wstring& name, RegistryType type,
                                 std::vector<std::byte>& data) const = 0;
    /// Writes exactly these bytes. NoAccess if the key is read-only or the store refuses.
    virtual RegistryStatus Set(const std::wstring& name, RegistryType type,
                               std::span<const std::byte> data) = 0;
    /// Opens a subkey: creates it with full access if possible, else opens it for reading; null if neither
    /// works.
    virtual std::unique_ptr<RegistryKey> OpenSubkey(const std::wstring& name) = 0;
};

/// Opens the component's base key under a root, as OpenSubkey does; null if it cannot even be read.
class RegistryStore {
  public:
    virtual ~RegistryStore() = default;
    virtual std::unique_ptr<RegistryKey> OpenBaseKey(RegistryRoot root) = 0;
};

/// The platform's store: the registry on Windows; on Linux "user.sqlite" and "machine.sqlite" in the settings
/// folders (support/Environment.h), where an unreadable file acts as an empty key that refuses writes.
std::unique_ptr<RegistryStore> MakeRegistryStore();

/// Gives this process settings of its own, empty at first and dropped at the end, instead of the user's. One
/// at a time, created before anything reads settings.
class PrivateSettings {
  public:
    /// `folder` receives the files; it belongs to the caller and is created when something is stored. Throws
    /// LDataError if the registry cannot be replaced (Windows).
    explicit PrivateSettings(const std::filesystem::path& folder);
    ~PrivateSettings();
    PrivateSettings(const PrivateSettings&) = delete;
    PrivateSettings& operator=(const PrivateSettings&) = delete;
};

}  // namespace orvex
