#pragma once
#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <vector>

namespace orvex {

/// The two stores: the current user's, and the machine's, which ordinary users can only read.
enum class RegistryRoot { CurrentUser, LocalMachine };

/// Types of stored values; the numbers are those of the registry (REG_SZ, REG_BINARY, REG_DWORD).
enum class RegistryType : std::uint32_t { String = 1, Binary = 3, Dword = 4 };

/// "Not there", "wrong type" and "no access" are different answers.
enum class RegistryStatus { Ok, NotFound, WrongType, NoAccess };

/// In bytes. Longer values are neither stored nor delivered (NoAccess).
inline constexpr std::size_t kLongestRegistryValue = 1000000;

/// One open key of a store, which outlives it. Closed when destroyed. Names are compared without regard to
/// the case of ASCII letters. Not shared between threads; no function throws.
class RegistryKey {
  public:
    virtual ~RegistryKey() = default;

    /// The stored bytes of a value, however many they are for its type: of a text with or without its
    /// terminating zero, as it was stored. WrongType when it is stored with another type. `data` is untouched
    /// unless Ok.
    virtual RegistryStatus Query(const std::wstring& name, RegistryType type,
                                 std::vector<std::byte>& data) const = 0;
    /// Writes a value, exactly these bytes. NoAccess when the key is open for reading only or the store
    /// refuses.
    virtual RegistryStatus Set(const std::wstring& name, RegistryType type,
                               std::span<const std::byte> data) = 0;
    /// Opens a subkey: created with full access if possible, else opened for reading; null when neither
    /// works.
    virtual std::unique_ptr<RegistryKey> OpenSubkey(const std::wstring& name) = 0;
};

/// Opens the base key of the component under a root, as OpenSubkey does. Null when it cannot even be read.
class RegistryStore {
  public:
    virtual ~RegistryStore() = default;
    virtual std::unique_ptr<RegistryKey> OpenBaseKey(RegistryRoot root) = 0;
};

/// The platform's store: the registry on Windows, one SQLite file per root elsewhere.
std::unique_ptr<RegistryStore> MakeRegistryStore();

}  // namespace orvex
