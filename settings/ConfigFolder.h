#pragma once
#include <filesystem>

namespace orvex {

/// The folder of the user's settings: ORVEX_CONFIG_DIR, else "orvex" in XDG_CONFIG_HOME, else
/// ".config/orvex" in the home folder. It may not exist; empty when the user has no home folder.
std::filesystem::path UserConfigFolder();

/// The folder of the settings that hold for every user: ORVEX_MACHINE_CONFIG_DIR, else "/etc/orvex". It may
/// not exist.
std::filesystem::path MachineConfigFolder();

}  // namespace orvex
