#include "support/com/ModuleFile_win.h"

#include <windows.h>

namespace orvex {

std::wstring ModuleFile(const void* address) {
    constexpr std::size_t kLongestPath = 32768;
    HMODULE module = nullptr;
    if (!GetModuleHandleExW(
            GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT,
            static_cast<LPCWSTR>(address), &module)) {
        return {};  // for a null handle GetModuleFileNameW would return the program
    }
    std::wstring path(MAX_PATH, L'\0');
    for (;;) {
        const DWORD length = GetModuleFileNameW(module, path.data(), static_cast<DWORD>(path.size()));
        if (length < path.size() || path.size() >= kLongestPath) {
            path.resize(length < path.size() ? length : 0);
            return path;
        }
        path.resize(path.size() * 2);  // cut off: the length is that of the buffer
    }
}

}  // namespace orvex
