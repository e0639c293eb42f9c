#pragma once
// The process's surroundings: environment variables, arguments, and the folders it works with.
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

namespace orvex {

/// Value of an environment variable; nullopt if it is not set, empty if it is set to nothing.
std::optional<std::wstring> EnvironmentVariable(const std::wstring& name);

/// The program's arguments without its own name. On Windows they are taken from the command line, because
/// main's are in the user's code page and lose every other character; and since the shells there leave "*"
/// and "?" to programs, a last path component with such a pattern is replaced by the matching files and
/// folders in natural order, or kept if nothing matches.
std::vector<std::wstring> ProgramArguments(int argc, const char* const* argv);

/// Folder of the component's own file: the shared library, or the program that it is linked into. Derived
/// from the address of one of its functions, so it is right after the folder has been moved.
std::filesystem::path ModuleFolder();

/// Folder of the files that the component brings: GDAL's data, the manual. ModuleFolder() where they lie
/// beside it, as in a build or on Windows; else "share/orvexcommon" of the prefix that the component is
/// installed in, derived from ModuleFolder(), so it is right after the prefix has been moved.
std::filesystem::path DataFolder();

/// Folder for files that can be lost without harm, such as the log; not created here.
/// Linux: "$XDG_CACHE_HOME/orvex", else "~/.cache/orvex". Windows: "%LOCALAPPDATA%\Orvex", else the folder
/// for temporary files.
std::filesystem::path UserCacheFolder();

/// Folder for temporary files that all users of a machine and other programs can find: "/tmp", on Windows
/// "C:\tmp". It may not exist.
std::filesystem::path SharedTemporaryFolder();

/// Folder of the user's settings. It may not exist; empty if the user has no home folder.
/// Linux: ORVEX_CONFIG_DIR, else "orvex" in XDG_CONFIG_HOME, else ".config/orvex" in the home folder.
/// Windows: ORVEX_CONFIG_DIR, else "Orvex" in APPDATA, else in the profile's roaming application data.
std::filesystem::path UserConfigFolder();

/// Folder of the settings shared by all users. It may not exist.
/// Linux: ORVEX_MACHINE_CONFIG_DIR, else "/etc/orvex". Windows: ORVEX_MACHINE_CONFIG_DIR, else "Orvex" in
/// ProgramData.
std::filesystem::path MachineConfigFolder();

}  // namespace orvex
