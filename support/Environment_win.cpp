#include <windows.h>

#include <knownfolders.h>
#include <shellapi.h>
#include <shlobj.h>
#include <shlwapi.h>

#include "support/Environment.h"
#include "support/Files.h"
#include "support/Handle_win.h"
#include "support/NaturalOrder.h"
#include "support/Text.h"
#include "support/com/ModuleFile_win.h"

namespace orvex {
namespace {

constexpr const wchar_t* kFolderName = L"Orvex";

/// What a pattern stands for. The system's own search would also match the short names of files: "*.las"
/// would find "a.lasx".
std::vector<std::wstring> Matches(const std::wstring& pattern) {
    const std::wstring folder = FolderOf(pattern);
    const std::wstring names = FileNameOf(pattern);
    std::vector<std::wstring> found;
    ListFolder(folder.empty() ? L"." : folder, [&](const FolderEntry& entry) {
        const std::wstring name = FileNameOf(entry.path);
        if (PathMatchSpecW(name.c_str(), names.c_str()) != FALSE) {
            found.push_back(folder.empty() ? name : entry.path);
        }
        return true;
    });
    SortNaturally(found);
    return found;
}

void AppendArgument(std::vector<std::wstring>& arguments, const std::wstring& argument) {
    const bool isPattern = FileNameOf(argument).find_first_of(L"*?") != std::wstring::npos;
    const auto found = isPattern ? Matches(argument) : std::vector<std::wstring>();
    if (found.empty()) {
        arguments.push_back(argument);
    }
    arguments.insert(arguments.end(), found.begin(), found.end());
}

/// The path in an environment variable; empty when it is not set.
std::filesystem::path PathIn(const wchar_t* variable) {
    return ToPath(EnvironmentVariable(variable).value_or(std::wstring()));
}

/// The base folder that a variable names, else the one that the system knows; empty when it knows none.
std::filesystem::path BaseFolder(const wchar_t* variable, const KNOWNFOLDERID& known) {
    if (auto named = PathIn(variable); named.is_absolute()) {
        return named;
    }
    wchar_t* text = nullptr;
    const HRESULT result = SHGetKnownFolderPath(known, KF_FLAG_DONT_VERIFY, nullptr, &text);
    const TaskMemory<wchar_t> path(text);  // to be freed after a failure, too
    return SUCCEEDED(result) ? ToPath(path.get()) : std::filesystem::path();
}

std::filesystem::path ConfigFolder(const wchar_t* own, const wchar_t* variable, const KNOWNFOLDERID& known) {
    if (auto named = PathIn(own); !named.empty()) {
        return named;
    }
    const std::filesystem::path base = BaseFolder(variable, known);
    return base.empty() ? base : base / kFolderName;
}

}  // namespace

std::optional<std::wstring> EnvironmentVariable(const std::wstring& name) {
    std::wstring value;
    // Asked again while another thread makes it longer.
    for (DWORD size = 256;;) {
        value.resize(size);
        SetLastError(ERROR_SUCCESS);
        const DWORD length = GetEnvironmentVariableW(name.c_str(), value.data(), size);
        if (length == 0 && GetLastError() == ERROR_ENVVAR_NOT_FOUND) {
            return std::nullopt;
        }
        if (length < size) {
            value.resize(length);
            return value;
        }
        size = length;
    }
}

std::vector<std::wstring> ProgramArguments(int, const char* const*) {
    int count = 0;
    const LocalMemory<wchar_t*> words(CommandLineToArgvW(GetCommandLineW(), &count));
    std::vector<std::wstring> arguments;
    for (int i = 1; words && i < count; ++i) {
        AppendArgument(arguments, words.get()[i]);
    }
    return arguments;
}

std::filesystem::path DataFolder() {
    return ModuleFolder();
}

std::filesystem::path ModuleFolder() {
    return std::filesystem::path(ModuleFile(reinterpret_cast<const void*>(&ModuleFolder))).parent_path();
}

std::filesystem::path UserCacheFolder() {
    const auto local = EnvironmentVariable(L"LOCALAPPDATA");
    return (local && !local->empty() ? ToPath(*local) : std::filesystem::temp_directory_path()) / kFolderName;
}

std::filesystem::path SharedTemporaryFolder() {
    return L"C:\\tmp";
}

std::filesystem::path UserConfigFolder() {
    return ConfigFolder(L"ORVEX_CONFIG_DIR", L"APPDATA", FOLDERID_RoamingAppData);
}

std::filesystem::path MachineConfigFolder() {
    return ConfigFolder(L"ORVEX_MACHINE_CONFIG_DIR", L"ProgramData", FOLDERID_ProgramData);
}

}  // namespace orvex
