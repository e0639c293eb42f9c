#pragma once
// What the process was started with, as wide text on every platform.
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

namespace orvex {

/// The value of an environment variable; none when there is no such variable, empty when it is set to
/// nothing.
std::optional<std::wstring> EnvironmentVariable(const std::wstring& name);

/// The arguments behind the program's name. On Windows they come from the command line itself, since main's
/// own are in the user's code page and lose what that has not; and a last component with "*" or "?", which
/// the shells there leave to programs, becomes the files and folders that match, in natural order, unless
/// there are none.
std::vector<std::wstring> ProgramArguments(int argc, const char* const* argv);

/// The folder for what the component may lose without harm, such as its log; not made here.
/// "$XDG_CACHE_HOME/orvex" or "~/.cache/orvex" on Linux, "%LOCALAPPDATA%\Orvex" on Windows; a folder for
/// temporary files where the user has none.
std::filesystem::path UserCacheFolder();

}  // namespace orvex
