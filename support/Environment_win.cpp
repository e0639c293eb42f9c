#include <windows.h>

#include <shellapi.h>
#include <shlwapi.h>

#include "support/Environment.h"
#include "support/Files.h"
#include "support/NaturalOrder.h"
#include "support/SystemMemory_win.h"
#include "support/Text.h"

namespace orvex {
namespace {

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

std::filesystem::path UserCacheFolder() {
    const auto local = EnvironmentVariable(L"LOCALAPPDATA");
    return (local ? ToPath(*local) : std::filesystem::temp_directory_path()) / "Orvex";
}

}  // namespace orvex
