#include <cstdlib>

#include "settings/PrivateSettings.h"

namespace orvex {

PrivateSettings::PrivateSettings(const std::filesystem::path& folder) {
    setenv("ORVEX_CONFIG_DIR", (folder / "orvex").c_str(), 1);
    setenv("XDG_CONFIG_HOME", folder.c_str(), 1);
}

PrivateSettings::~PrivateSettings() {
    unsetenv("ORVEX_CONFIG_DIR");
    unsetenv("XDG_CONFIG_HOME");
}

}  // namespace orvex
