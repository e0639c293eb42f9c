#include <windows.h>

#include <shellapi.h>

#include <memory>

#include "support/Environment.h"
#include "support/Text.h"

namespace orvex {
namespace {

struct FreeLocal {
    void operator()(wchar_t** memory) const { LocalFree(static_cast<HLOCAL>(memory)); }
};

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
    const std::unique_ptr<wchar_t*, FreeLocal> words(CommandLineToArgvW(GetCommandLineW(), &count));
    return words && count > 1 ? std::vector<std::wstring>(words.get() + 1, words.get() + count)
                              : std::vector<std::wstring>();
}

std::filesystem::path UserCacheFolder() {
    const auto local = EnvironmentVariable(L"LOCALAPPDATA");
    return (local ? ToPath(*local) : std::filesystem::temp_directory_path()) / "Orvex";
}

}  // namespace orvex
