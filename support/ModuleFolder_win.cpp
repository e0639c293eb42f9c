#include <windows.h>

#include <array>

#include "support/ModuleFolder.h"

namespace orvex {

std::filesystem::path ModuleFolder() {
    HMODULE module = nullptr;
    GetModuleHandleExW(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT,
                       reinterpret_cast<LPCWSTR>(&ModuleFolder), &module);
    std::array<wchar_t, MAX_PATH + 1> file{};
    const DWORD length = GetModuleFileNameW(module, file.data(), static_cast<DWORD>(file.size()));
    // A name that fills the buffer was cut and leads elsewhere.
    return length < file.size() ? std::filesystem::path(file.data()).parent_path() : std::filesystem::path();
}

}  // namespace orvex
