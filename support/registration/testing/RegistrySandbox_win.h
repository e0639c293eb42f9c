#pragma once
#include <gtest/gtest.h>

#include "support/OpenKey_win.h"
#include "support/registration/RegistryImage_win.h"

namespace orvex {

inline bool operator==(const RegistryData& a, const RegistryData& b) {
    return a.type == b.type && a.bytes == b.bytes;
}
inline bool operator==(const RegistryImage& a, const RegistryImage& b) {
    return a.name == b.name && a.values == b.values && a.keys == b.keys;
}

namespace testing {

/// Redirects the classes root and the current user of this process into a key of its own, which looks like
/// those of a machine on which little is registered, until destroyed; then the user's registry is as it was.
/// One at a time.
class RegistrySandbox {
  public:
    RegistrySandbox() {
        // The current user comes last: the other's key is made below the true one.
        Redirect(HKEY_CLASSES_ROOT, L"Classes");
        Redirect(HKEY_CURRENT_USER, L"User");
        for (const RegistryPlace& place : {At(HKEY_CLASSES_ROOT, L"AppID"), At(HKEY_CLASSES_ROOT, L"TypeLib"),
                                           At(HKEY_CURRENT_USER, L"Software\\Classes\\AppID"),
                                           At(HKEY_CURRENT_USER, L"Software\\Classes\\TypeLib")}) {
            CreateRegistryKey(place);
            CreateRegistryKey(place.Below(L"another's"));
            WriteRegistryValue(place.Below(L"another's"), L"", {REG_DWORD, {1, 2, 3, 4}});
        }
    }
    ~RegistrySandbox() {
        RegOverridePredefKey(HKEY_CURRENT_USER, nullptr);
        RegOverridePredefKey(HKEY_CLASSES_ROOT, nullptr);
        RemoveRegistryTree({HKEY_CURRENT_USER, path_});
    }
    RegistrySandbox(const RegistrySandbox&) = delete;
    RegistrySandbox& operator=(const RegistrySandbox&) = delete;

    static RegistryPlace At(HKEY root, std::wstring path) { return {root, std::move(path)}; }

    /// All that is in both.
    static RegistryImage All() {
        RegistryImage all;
        all.keys.push_back(ReadRegistry({HKEY_CLASSES_ROOT, {}}).value());
        all.keys.push_back(ReadRegistry({HKEY_CURRENT_USER, {}}).value());
        return all;
    }

    /// Makes a key below which no lasting one can be made.
    static void CreateVolatile(const RegistryPlace& place) {
        HKEY made = nullptr;
        EXPECT_EQ(RegCreateKeyExW(place.root, place.path.c_str(), 0, nullptr, REG_OPTION_VOLATILE, KEY_READ,
                                  nullptr, &made, nullptr),
                  ERROR_SUCCESS);
        const OpenKey key(made);
    }

  private:
    void Redirect(HKEY root, const std::wstring& name) {
        HKEY made = nullptr;
        EXPECT_EQ(RegCreateKeyW(HKEY_CURRENT_USER, (path_ + L"\\" + name).c_str(), &made), ERROR_SUCCESS);
        const OpenKey key(made);
        EXPECT_EQ(RegOverridePredefKey(root, key.Get()), ERROR_SUCCESS);
    }

    std::wstring path_ = L"Software\\OrvexTest-" + std::to_wstring(GetCurrentProcessId());
};

}  // namespace testing
}  // namespace orvex
