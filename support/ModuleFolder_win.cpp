#include <windows.h>

#include <string>

#include "support/ModuleFolder.h"

namespace orvex {
namespace {

/// The full path of a module's file; empty when the system does not tell.
std::wstring FileOf(HMODULE module) {
    constexpr DWORD kLongestPath = 32768;
    for (DWORD size = MAX_PATH; size <= 2 * kLongestPath; size *= 2) {
        std::wstring name(size, L'\0');
        const DWORD length = GetModuleFileNameW(module, name.data(), size);
        if (length < size) {  // else it was cut
            name.resize(length);
            return name;
        }
    }
    return {};
}

}  // namespace

std::filesystem::path ModuleFolder() {
    HMODULE module = nullptr;
    GetModuleHandleExW(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT,
                       reinterpret_cast<LPCWSTR>(&ModuleFolder), &module);
    return std::filesystem::path(FileOf(module)).parent_path();
}

}  // namespace orvex
