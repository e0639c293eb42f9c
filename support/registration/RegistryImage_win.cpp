#include "support/registration/RegistryImage_win.h"

#include <system_error>

#include "support/OpenKey_win.h"

namespace orvex {
namespace {

void Check(LSTATUS status, const char* call) {
    if (status != ERROR_SUCCESS) {
        throw std::system_error(status, std::system_category(), call);
    }
}

/// Empty when there is no such key.
OpenKey Open(const RegistryPlace& place) {
    HKEY key = nullptr;
    const LSTATUS status = RegOpenKeyExW(place.root, place.path.c_str(), 0, KEY_READ, &key);
    if (status == ERROR_FILE_NOT_FOUND) {
        return OpenKey();
    }
    Check(status, "RegOpenKeyExW");
    return OpenKey(key);
}

std::optional<RegistryData> ValueOf(HKEY key, const std::wstring& name) {
    RegistryData data;
    DWORD size = 0;
    LSTATUS status = RegQueryValueExW(key, name.c_str(), nullptr, &data.type, nullptr, &size);
    do {
        data.bytes.resize(size);
        status = status == ERROR_SUCCESS || status == ERROR_MORE_DATA
                     ? RegQueryValueExW(key, name.c_str(), nullptr, &data.type, data.bytes.data(), &size)
                     : status;
    } while (status == ERROR_MORE_DATA);  // it has grown meanwhile
    if (status == ERROR_FILE_NOT_FOUND) {
        return std::nullopt;
    }
    Check(status, "RegQueryValueExW");
    data.bytes.resize(size);
    return data;
}

/// Names of values or of keys, as the given function enumerates them.
template <typename Next>
std::vector<std::wstring> NamesOf(Next next) {
    constexpr DWORD kLongestName = 16383;
    std::vector<std::wstring> names;
    std::wstring buffer(kLongestName + 1, L'\0');
    for (DWORD i = 0;; ++i) {
        auto length = static_cast<DWORD>(buffer.size());
        const LSTATUS status = next(i, buffer.data(), &length);
        if (status == ERROR_NO_MORE_ITEMS) {
            return names;
        }
        Check(status, "RegEnum");
        names.emplace_back(buffer, 0, length);
    }
}

}  // namespace

std::optional<RegistryImage> ReadRegistry(const RegistryPlace& place) {
    const OpenKey key = Open(place);
    if (!key) {
        return std::nullopt;
    }
    RegistryImage image;
    for (const std::wstring& name : NamesOf([&](DWORD i, wchar_t*buffer, DWORD*length) {
             return RegEnumValueW(key.Get(), i, buffer, length, nullptr, nullptr, nullptr, nullptr);
         })) {
        if (auto data = ValueOf(key.Get(), name)) {
            image.values.emplace_back(name, *std::move(data));
        }
    }
    for (const std::wstring& name : NamesOf([&](DWORD i, wchar_t*buffer, DWORD*length) {
             return RegEnumKeyExW(key.Get(), i, buffer, length, nullptr, nullptr, nullptr, nullptr);
         })) {
        if (auto below = ReadRegistry(place.Below(name))) {
            below->name = name;
            image.keys.push_back(*std::move(below));
        }
    }
    return image;
}

std::optional<RegistryData> ReadRegistryValue(const RegistryPlace& place, const std::wstring& name) {
    const OpenKey key = Open(place);
    return key ? ValueOf(key.Get(), name) : std::nullopt;
}

bool CreateRegistryKey(const RegistryPlace& place) {
    HKEY made = nullptr;
    DWORD disposition = 0;
    Check(RegCreateKeyExW(place.root, place.path.c_str(), 0, nullptr, REG_OPTION_NON_VOLATILE,
                          KEY_READ | KEY_WRITE, nullptr, &made, &disposition),
          "RegCreateKeyExW");
    const OpenKey key(made);
    return disposition == REG_CREATED_NEW_KEY;
}

void WriteRegistryValue(const RegistryPlace& place, const std::wstring& name, const RegistryData& data) {
    Check(RegSetKeyValueW(place.root, place.path.c_str(), name.c_str(), data.type, data.bytes.data(),
                          static_cast<DWORD>(data.bytes.size())),
          "RegSetKeyValueW");
}

void RemoveRegistryValue(const RegistryPlace& place, const std::wstring& name) {
    const LSTATUS status = RegDeleteKeyValueW(place.root, place.path.c_str(), name.c_str());
    Check(status == ERROR_FILE_NOT_FOUND ? ERROR_SUCCESS : status, "RegDeleteKeyValueW");
}

void RemoveRegistryTree(const RegistryPlace& place) {
    const LSTATUS status = RegDeleteTreeW(place.root, place.path.c_str());
    Check(status == ERROR_FILE_NOT_FOUND ? ERROR_SUCCESS : status, "RegDeleteTreeW");
}

void RestoreRegistry(const RegistryPlace& place, const RegistryImage& image) {
    RemoveRegistryTree(place);
    CreateRegistryKey(place);
    for (const auto& [name, data] : image.values) {
        WriteRegistryValue(place, name, data);
    }
    for (const RegistryImage& below : image.keys) {
        RestoreRegistry(place.Below(below.name), below);
    }
}

}  // namespace orvex
