#pragma once
#include <filesystem>

namespace orvex {

/// The folder of the user's settings. It may not exist; empty when the user has no home folder.
/// Linux: ORVEX_CONFIG_DIR, else "orvex" in XDG_CONFIG_HOME, else ".config/orvex" in the home folder.
/// Windows: ORVEX_CONFIG_DIR, else "Orvex" in APPDATA, else in the roaming application data of the profile.
std::filesystem::path UserConfigFolder();

/// The folder of the settings that hold for every user. It may not exist.
/// Linux: ORVEX_MACHINE_CONFIG_DIR, else "/etc/orvex". Windows: ORVEX_MACHINE_CONFIG_DIR, else "Orvex" in
/// ProgramData.
std::filesystem::path MachineConfigFolder();

}  // namespace orvex
