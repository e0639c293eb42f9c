#include <pwd.h>
#include <unistd.h>

#include <cstdlib>

#include "settings/ConfigFolder.h"

namespace orvex {
namespace {

/// The path in an environment variable; empty when it is not set.
std::filesystem::path Named(const char* variable) {
    const char* value = std::getenv(variable);
    return value == nullptr ? std::filesystem::path() : std::filesystem::path(value);
}

std::filesystem::path HomeFolder() {
    std::filesystem::path home = Named("HOME");
    if (home.empty()) {
        const passwd* user = getpwuid(geteuid());
        home = user != nullptr && user->pw_dir != nullptr ? user->pw_dir : "";
    }
    return home;
}

}  // namespace

std::filesystem::path UserConfigFolder() {
    if (auto folder = Named("ORVEX_CONFIG_DIR"); !folder.empty()) {
        return folder;
    }
    // The base directory rules say that a relative path there is to be ignored.
    if (const auto base = Named("XDG_CONFIG_HOME"); base.is_absolute()) {
        return base / "orvex";
    }
    const std::filesystem::path home = HomeFolder();
    return home.empty() ? home : home / ".config" / "orvex";
}

std::filesystem::path MachineConfigFolder() {
    const std::filesystem::path folder = Named("ORVEX_MACHINE_CONFIG_DIR");
    return folder.empty() ? "/etc/orvex" : folder;
}

}  // namespace orvex
