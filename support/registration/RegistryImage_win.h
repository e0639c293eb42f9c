#pragma once
#include <windows.h>

#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace orvex {

/// A key below one of the predefined ones.
struct RegistryPlace {
    HKEY root = nullptr;  ///< predefined, such as HKEY_CLASSES_ROOT
    std::wstring path;    ///< levels separated by backslashes; empty for the root itself

    RegistryPlace Below(const std::wstring& name) const {
        return {root, path.empty() ? name : path + L"\\" + name};
    }
};

struct RegistryData {
    DWORD type = REG_NONE;
    std::vector<BYTE> bytes;
};

/// What a key holds.
struct RegistryImage {
    std::wstring name;  ///< of the last level; empty for the key that was asked for
    std::vector<std::pair<std::wstring, RegistryData>> values;
    std::vector<RegistryImage> keys;

    bool IsEmpty() const { return values.empty() && keys.empty(); }
};

// These throw std::system_error with the Win32 code when the system refuses.

/// Nothing when there is no such key.
std::optional<RegistryImage> ReadRegistry(const RegistryPlace& place);
/// Nothing when there is no such key or value.
std::optional<RegistryData> ReadRegistryValue(const RegistryPlace& place, const std::wstring& name);
/// Makes the key if it is not there; the one above it must be. Says whether it was made.
bool CreateRegistryKey(const RegistryPlace& place);
void WriteRegistryValue(const RegistryPlace& place, const std::wstring& name, const RegistryData& data);
/// No such value is no failure.
void RemoveRegistryValue(const RegistryPlace& place, const std::wstring& name);
/// The key with all that is in it. No such key is no failure.
void RemoveRegistryTree(const RegistryPlace& place);
/// Puts the key back as it was, without anything that has come since.
void RestoreRegistry(const RegistryPlace& place, const RegistryImage& image);

}  // namespace orvex
