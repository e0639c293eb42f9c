#pragma once
#include <windows.h>

#include <cstddef>
#include <optional>
#include <span>
#include <string>
#include <utility>
#include <vector>

namespace orvex::testing {

/// Written out once more: what the component uses is to be compared with it.
inline constexpr const wchar_t* kBaseKeyName = L"Software\\Tessaly Group\\Orvex";

/// A value as raw calls see it.
struct RawValue {
    DWORD type = REG_NONE;
    std::vector<std::byte> data;
    friend bool operator==(const RawValue&, const RawValue&) = default;
};

/// Redirects both of this process's roots to a key of its own under the current user, until destroyed; then
/// that key is gone as well, and the user's registry is as it was. One at a time.
class PrivateRegistry {
  public:
    PrivateRegistry();
    ~PrivateRegistry();
    PrivateRegistry(const PrivateRegistry&) = delete;
    PrivateRegistry& operator=(const PrivateRegistry&) = delete;

    /// Puts a value there by raw calls; makes the key if it does not exist.
    void Put(HKEY root, const std::wstring& key, const std::wstring& name, const RawValue& value) const;
    /// Reads a value by raw calls; none when it is not there.
    std::optional<RawValue> Find(HKEY root, const std::wstring& key, const std::wstring& name) const;
    /// From now on an existing key can only be read: its access list keeps everybody from setting values and
    /// making subkeys. That is what an ordinary user meets under the local machine. (Wine makes subkeys all
    /// the same.)
    void DenyWrites(HKEY root, const std::wstring& key);

  private:
    void SetRights(HKEY root, const std::wstring& key, const wchar_t* rights) const;

    std::wstring path_;
    std::vector<std::pair<HKEY, std::wstring>> denied_;
};

}  // namespace orvex::testing
