#include <pwd.h>
#include <unistd.h>

#include "settings/ConfigFolder.h"
#include "support/Environment.h"
#include "support/Text.h"

namespace orvex {
namespace {

/// The path in an environment variable; empty when it is not set.
std::filesystem::path Named(const wchar_t* variable) {
    return ToPath(EnvironmentVariable(variable).value_or(std::wstring()));
}

std::filesystem::path HomeFolder() {
    std::filesystem::path home = Named(L"HOME");
    if (home.empty()) {
        const passwd* user = getpwuid(geteuid());
        home = user != nullptr && user->pw_dir != nullptr ? user->pw_dir : "";
    }
    return home;
}

}  // namespace

std::filesystem::path UserConfigFolder() {
    if (auto folder = Named(L"ORVEX_CONFIG_DIR"); !folder.empty()) {
        return folder;
    }
    // The base directory rules say that a relative path there is to be ignored.
    if (const auto base = Named(L"XDG_CONFIG_HOME"); base.is_absolute()) {
        return base / "orvex";
    }
    const std::filesystem::path home = HomeFolder();
    return home.empty() ? home : home / ".config" / "orvex";
}

std::filesystem::path MachineConfigFolder() {
    const std::filesystem::path folder = Named(L"ORVEX_MACHINE_CONFIG_DIR");
    return folder.empty() ? "/etc/orvex" : folder;
}

}  // namespace orvex
