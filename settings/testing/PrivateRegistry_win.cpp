#include "settings/testing/PrivateRegistry_win.h"

#include <gtest/gtest.h>

#include "support/Handle_win.h"

namespace orvex::testing {
namespace {

OpenKey Create(HKEY root, const std::wstring& path) {
    HKEY key = nullptr;
    EXPECT_EQ(RegCreateKeyExW(root, path.c_str(), 0, nullptr, 0, KEY_ALL_ACCESS, nullptr, &key, nullptr),
              ERROR_SUCCESS);
    return OpenKey(key);
}

OpenKey Open(HKEY root, const std::wstring& path, REGSAM access) {
    HKEY key = nullptr;
    return OpenKey(RegOpenKeyExW(root, path.c_str(), 0, access, &key) == ERROR_SUCCESS ? key : nullptr);
}

void Redirect(HKEY root, const std::wstring& path) {
    const OpenKey key = Create(HKEY_CURRENT_USER, path);
    EXPECT_EQ(RegOverridePredefKey(root, key.Get()), ERROR_SUCCESS);
}

}  // namespace

PrivateRegistry::PrivateRegistry() : path_(L"Software\\OrvexTest-" + std::to_wstring(GetCurrentProcessId())) {
    // The current user comes last: the other's key is made under the true one.
    Redirect(HKEY_LOCAL_MACHINE, path_ + L"\\Machine");
    Redirect(HKEY_CURRENT_USER, path_ + L"\\User");
}

PrivateRegistry::~PrivateRegistry() {
    for (const auto& [root, key] : denied_) {
        SetRights(root, key, L"D:(A;;KA;;;WD)");
    }
    RegOverridePredefKey(HKEY_CURRENT_USER, nullptr);
    RegOverridePredefKey(HKEY_LOCAL_MACHINE, nullptr);
    EXPECT_EQ(RegDeleteTreeW(HKEY_CURRENT_USER, path_.c_str()), ERROR_SUCCESS);
}

void PrivateRegistry::Put(HKEY root, const std::wstring& key, const std::wstring& name,
                          const RawValue& value) const {
    // The call looks behind an unterminated text for its zero, and must not find one.
    std::vector<std::byte> bytes = value.data;
    bytes.insert(bytes.end(), 2, std::byte{0xFF});
    EXPECT_EQ(
        RegSetValueExW(Create(root, key).Get(), name.c_str(), 0, value.type,
                       reinterpret_cast<const BYTE*>(bytes.data()), static_cast<DWORD>(value.data.size())),
        ERROR_SUCCESS);
}

std::optional<RawValue> PrivateRegistry::Find(HKEY root, const std::wstring& key,
                                              const std::wstring& name) const {
    const OpenKey open = Open(root, key, KEY_READ);
    RawValue value;
    DWORD size = 0;
    if (!open ||
        RegQueryValueExW(open.Get(), name.c_str(), nullptr, nullptr, nullptr, &size) != ERROR_SUCCESS) {
        return std::nullopt;
    }
    value.data.resize(size);
    EXPECT_EQ(RegQueryValueExW(open.Get(), name.c_str(), nullptr, &value.type,
                               reinterpret_cast<BYTE*>(value.data.data()), &size),
              ERROR_SUCCESS);
    return value;
}

void PrivateRegistry::DenyWrites(HKEY root, const std::wstring& key) {
    // KEY_SET_VALUE and KEY_CREATE_SUB_KEY are denied.
    SetRights(root, key, L"D:P(D;;0x6;;;WD)(A;;KA;;;WD)");
    denied_.emplace_back(root, key);
}

void PrivateRegistry::SetRights(HKEY root, const std::wstring& key, const wchar_t* rights) const {
    const LocalMemory<void> descriptor = SecurityDescriptorOf(rights);
    ASSERT_TRUE(descriptor);
    EXPECT_EQ(
        RegSetKeySecurity(Open(root, key, WRITE_DAC).Get(), DACL_SECURITY_INFORMATION, descriptor.get()),
        ERROR_SUCCESS);
}

}  // namespace orvex::testing
