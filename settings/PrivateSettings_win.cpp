#include <windows.h>

#include <string>

#include "settings/PrivateSettings.h"
#include "support/LDataError.h"
#include "support/OpenKey_win.h"

namespace orvex {
namespace {

std::wstring KeyOfThisProcess() {
    return L"Software\\orvex-private-" + std::to_wstring(GetCurrentProcessId());
}

}  // namespace

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
