#include <windows.h>

#include <algorithm>
#include <new>
#include <utility>

#include "settings/RegistryKey.h"
#include "support/Handle_win.h"
#include "support/LDataError.h"

namespace orvex {
namespace {

constexpr const wchar_t* kBaseKey = L"Software\\Tessaly Group\\Orvex";

/// Created with full access if possible, else opened for reading; empty when neither goes. `parent` may be a
/// predefined key.
OpenKey OpenOrCreate(HKEY parent, const wchar_t* path) {
    HKEY key = nullptr;
    const bool isOpen = RegCreateKeyExW(parent, path, 0, nullptr, REG_OPTION_NON_VOLATILE, KEY_ALL_ACCESS,
                                        nullptr, &key, nullptr) == ERROR_SUCCESS ||
                        RegOpenKeyExW(parent, path, 0, KEY_READ, &key) == ERROR_SUCCESS;
    return OpenKey(isOpen ? key : nullptr);
}

RegistryStatus StatusOf(LSTATUS result) {
    switch (result) {
        case ERROR_SUCCESS:
            return RegistryStatus::Ok;
        case ERROR_FILE_NOT_FOUND:
        case ERROR_KEY_DELETED:  // by another process, while it is open here
            return RegistryStatus::NotFound;
        default:
            return RegistryStatus::NoAccess;
    }
}

/// Reads the whole value, also one that other processes change meanwhile.
RegistryStatus ReadValue(HKEY key, const wchar_t* name, RegistryType type, std::vector<std::byte>& data) {
    // Values are a few bytes, so that one call mostly does; more room for those that are not.
    data.resize(64);
    while (true) {
        DWORD storedType = REG_NONE;
        auto size = static_cast<DWORD>(data.size());
        const LSTATUS result =
            RegQueryValueExW(key, name, nullptr, &storedType, reinterpret_cast<BYTE*>(data.data()), &size);
        if (result != ERROR_SUCCESS && result != ERROR_MORE_DATA) {
            return StatusOf(result);
        }
        if (storedType != static_cast<DWORD>(type)) {
            return RegistryStatus::WrongType;
        }
        if (result == ERROR_SUCCESS) {
            data.resize(size);
            return RegistryStatus::Ok;
        }
        if (size > kLongestRegistryValue) {
            return RegistryStatus::NoAccess;
        }
        data.resize(std::max<std::size_t>(size, data.size() + 1));
    }
}

RegistryStatus WriteValue(HKEY key, const wchar_t* name, RegistryType type, std::span<const std::byte> data) {
    // The call looks at the character behind the last one of an unterminated text, and stores it as well if
    // it is a zero. Here that place exists and holds something else.
    std::vector<std::byte> bytes(data.begin(), data.end());
    bytes.insert(bytes.end(), sizeof(wchar_t), std::byte{0xFF});
    const LSTATUS result =
        RegSetValueExW(key, name, 0, static_cast<DWORD>(type), reinterpret_cast<const BYTE*>(bytes.data()),
                       static_cast<DWORD>(data.size()));
    return result == ERROR_SUCCESS ? RegistryStatus::Ok : RegistryStatus::NoAccess;
}

class WindowsKey final : public RegistryKey {
  public:
    explicit WindowsKey(OpenKey key) : key_(std::move(key)) {}

    RegistryStatus Query(const std::wstring& name, RegistryType type,
                         std::vector<std::byte>& data) const override {
        try {
            std::vector<std::byte> read;
            const RegistryStatus status = ReadValue(key_.Get(), name.c_str(), type, read);
            if (status == RegistryStatus::Ok) {
                data = std::move(read);
            }
            return status;
        } catch (const std::bad_alloc&) {
            return RegistryStatus::NoAccess;
        }
    }
    RegistryStatus Set(const std::wstring& name, RegistryType type,
                       std::span<const std::byte> data) override {
        if (data.size() > kLongestRegistryValue) {
            return RegistryStatus::NoAccess;
        }
        try {
            return WriteValue(key_.Get(), name.c_str(), type, data);
        } catch (const std::bad_alloc&) {
            return RegistryStatus::NoAccess;
        }
    }
    std::unique_ptr<RegistryKey> OpenSubkey(const std::wstring& name) override {
        return Opened(key_.Get(), name.c_str());
    }

    /// The key of a path, null when it cannot even be read.
    static std::unique_ptr<RegistryKey> Opened(HKEY parent, const wchar_t* path) {
        OpenKey key = OpenOrCreate(parent, path);
        return key ? std::make_unique<WindowsKey>(std::move(key)) : nullptr;
    }

  private:
    OpenKey key_;
};

class WindowsRegistry final : public RegistryStore {
  public:
    std::unique_ptr<RegistryKey> OpenBaseKey(RegistryRoot root) override {
        return WindowsKey::Opened(root == RegistryRoot::CurrentUser ? HKEY_CURRENT_USER : HKEY_LOCAL_MACHINE,
                                  kBaseKey);
    }
};

std::wstring KeyOfThisProcess() {
    return L"Software\\orvex-private-" + std::to_wstring(GetCurrentProcessId());
}

}  // namespace

std::unique_ptr<RegistryStore> MakeRegistryStore() {
    return std::make_unique<WindowsRegistry>();
}

PrivateSettings::PrivateSettings(const std::filesystem::path& folder) {
    HKEY made = nullptr;
    // Not volatile: that would have to hold for every key that is made in it.
    LSTATUS result = RegCreateKeyExW(HKEY_CURRENT_USER, KeyOfThisProcess().c_str(), 0, nullptr,
                                     REG_OPTION_NON_VOLATILE, KEY_ALL_ACCESS, nullptr, &made, nullptr);
    const OpenKey key(result == ERROR_SUCCESS ? made : nullptr);
    if (key) {
        result = RegOverridePredefKey(HKEY_CURRENT_USER, key.Get());
    }
    if (result != ERROR_SUCCESS) {
        throw LDataError(L"no settings of its own: error " + std::to_wstring(result));
    }
    SetEnvironmentVariableW(L"ORVEX_CONFIG_DIR", folder.c_str());
}

PrivateSettings::~PrivateSettings() {
    SetEnvironmentVariableW(L"ORVEX_CONFIG_DIR", nullptr);
    RegOverridePredefKey(HKEY_CURRENT_USER, nullptr);
    RegDeleteTreeW(HKEY_CURRENT_USER, KeyOfThisProcess().c_str());
}

}  // namespace orvex
