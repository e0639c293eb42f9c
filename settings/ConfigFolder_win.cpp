#include <windows.h>

#include <knownfolders.h>
#include <shlobj.h>

#include "settings/ConfigFolder.h"
#include "support/Environment.h"
#include "support/SystemMemory_win.h"
#include "support/Text.h"

namespace orvex {
namespace {

constexpr const wchar_t* kName = L"Orvex";

/// The path in an environment variable; empty when it is not set.
std::filesystem::path Named(const wchar_t* variable) {
    return ToPath(EnvironmentVariable(variable).value_or(std::wstring()));
}

/// The base folder that a variable names, else the one that the system knows; empty when it knows none.
std::filesystem::path Base(const wchar_t* variable, const KNOWNFOLDERID& known) {
    if (auto named = Named(variable); named.is_absolute()) {
        return named;
    }
    wchar_t* text = nullptr;
    const HRESULT result = SHGetKnownFolderPath(known, KF_FLAG_DONT_VERIFY, nullptr, &text);
    const TaskMemory<wchar_t> path(text);  // to be freed after a failure, too
    return SUCCEEDED(result) ? ToPath(path.get()) : std::filesystem::path();
}

std::filesystem::path Folder(const wchar_t* own, const wchar_t* variable, const KNOWNFOLDERID& known) {
    if (auto named = Named(own); !named.empty()) {
        return named;
    }
    const std::filesystem::path base = Base(variable, known);
    return base.empty() ? base : base / kName;
}

}  // namespace

std::filesystem::path UserConfigFolder() {
    return Folder(L"ORVEX_CONFIG_DIR", L"APPDATA", FOLDERID_RoamingAppData);
}

std::filesystem::path MachineConfigFolder() {
    return Folder(L"ORVEX_MACHINE_CONFIG_DIR", L"ProgramData", FOLDERID_ProgramData);
}

}  // namespace orvex
