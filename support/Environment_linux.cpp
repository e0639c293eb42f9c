#include <dlfcn.h>
#include <pwd.h>
#include <unistd.h>

#include <cstdlib>

#include "support/Environment.h"
#include "support/Text.h"

namespace orvex {
namespace {

/// The path in an environment variable; empty when it is not set.
std::filesystem::path PathIn(const wchar_t* variable) {
    return ToPath(EnvironmentVariable(variable).value_or(std::wstring()));
}

std::filesystem::path HomeFolder() {
    std::filesystem::path home = PathIn(L"HOME");
    if (!home.is_absolute()) {
        const passwd* user = getpwuid(geteuid());
        home = user != nullptr && user->pw_dir != nullptr ? user->pw_dir : "";
    }
    return home;
}

}  // namespace

std::optional<std::wstring> EnvironmentVariable(const std::wstring& name) {
    const char* value = std::getenv(ToUtf8(name).c_str());
    return value == nullptr ? std::nullopt : std::optional(FromUtf8(value));
}

std::vector<std::wstring> ProgramArguments(int argc, const char* const* argv) {
    std::vector<std::wstring> arguments;
    for (int i = 1; i < argc; ++i) {
        arguments.push_back(FromUtf8(argv[i]));
    }
    return arguments;
}

std::filesystem::path ModuleFolder() {
    Dl_info info{};
    if (dladdr(reinterpret_cast<const void*>(&ModuleFolder), &info) == 0 || info.dli_fname == nullptr) {
        return std::filesystem::current_path();
    }
    std::error_code error;
    // A program's own name may be relative to the folder it was started in; the kernel knows the full one.
    std::filesystem::path file = std::filesystem::canonical(info.dli_fname, error);
    if (error) {
        file = std::filesystem::read_symlink("/proc/self/exe", error);
    }
    return file.parent_path();
}

std::filesystem::path DataFolder() {
    std::filesystem::path module = ModuleFolder();
    std::error_code error;
    if (std::filesystem::is_directory(module / "gdal-data", error)) {
        return module;
    }
    // Programs lie in PREFIX/bin, libraries in PREFIX/lib or PREFIX/lib/ARCHITECTURE.
    for (const std::filesystem::path& prefix : {module.parent_path(), module.parent_path().parent_path()}) {
        std::filesystem::path data = prefix / "share" / "orvexcommon";
        if (std::filesystem::is_directory(data, error)) {
            return data;
        }
    }
    return module;
}

// The base directory rules say that paths that are not absolute are to be ignored.
std::filesystem::path UserCacheFolder() {
    if (const auto base = PathIn(L"XDG_CACHE_HOME"); base.is_absolute()) {
        return base / "orvex";
    }
    const std::filesystem::path home = HomeFolder();
    return (home.empty() ? "/tmp" : home) / ".cache" / "orvex";
}

std::filesystem::path SharedTemporaryFolder() {
    return "/tmp";
}

std::filesystem::path UserConfigFolder() {
    if (auto folder = PathIn(L"ORVEX_CONFIG_DIR"); !folder.empty()) {
        return folder;
    }
    if (const auto base = PathIn(L"XDG_CONFIG_HOME"); base.is_absolute()) {
        return base / "orvex";
    }
    const std::filesystem::path home = HomeFolder();
    return home.empty() ? home : home / ".config" / "orvex";
}

std::filesystem::path MachineConfigFolder() {
    const std::filesystem::path folder = PathIn(L"ORVEX_MACHINE_CONFIG_DIR");
    return folder.empty() ? "/etc/orvex" : folder;
}

}  // namespace orvex
