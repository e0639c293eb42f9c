#include "support/testing/TestSystem.h"

#include <windows.h>

#include <psapi.h>
#include <winioctl.h>

#include <array>
#include <stdexcept>

#include "support/Handle_win.h"
#include "support/Text.h"

namespace orvex::testing {
namespace {

/// True when memory at an address is a view of a file whose path ends so. The system begins these paths with
/// its name for the volume.
bool IsViewOf(void* address, const std::wstring& ending) {
    std::array<wchar_t, 32768> name{};
    const DWORD length =
        GetMappedFileNameW(GetCurrentProcess(), address, name.data(), static_cast<DWORD>(name.size()));
    return ToUpper({name.data(), length}).ends_with(ToUpper(ending));
}

}  // namespace

void PutVariable(const std::wstring& name, const std::optional<std::wstring>& value) {
    SetEnvironmentVariableW(name.c_str(), value ? value->c_str() : nullptr);
}

std::size_t OpenHandles() {
    // Wine has no count of them. Handles are small multiples of four.
    constexpr std::uintptr_t kLast = 0x10000;
    std::size_t count = 0;
    for (std::uintptr_t value = 4; value <= kLast; value += 4) {
        DWORD flags = 0;
        count += GetHandleInformation(reinterpret_cast<HANDLE>(value), &flags) != FALSE ? 1U : 0U;
    }
    return count;
}

std::size_t MappingsOf(const std::wstring& path) {
    const std::wstring ending = path.substr(path.find(L'\\'));
    std::size_t count = 0;
    MEMORY_BASIC_INFORMATION region{};
    const void* last = nullptr;
    for (const char* at = nullptr; VirtualQuery(at, &region, sizeof(region)) != 0;
         at = static_cast<const char*>(region.BaseAddress) + region.RegionSize) {
        const bool isNew = region.Type == MEM_MAPPED && region.AllocationBase != last;
        last = region.AllocationBase;
        count += isNew && IsViewOf(region.AllocationBase, ending) ? 1U : 0U;
    }
    return count;
}

std::uint64_t PeakMemory() {
    PROCESS_MEMORY_COUNTERS counters{};
    GetProcessMemoryInfo(GetCurrentProcess(), &counters, sizeof(counters));
    return counters.PeakWorkingSetSize;
}

void GrowSparse(const std::wstring& path, std::uint64_t size) {
    const Handle file(CreateFileW(ToPath(path).c_str(), GENERIC_READ | GENERIC_WRITE, 0, nullptr,
                                  OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr));
    DWORD returned = 0;
    LARGE_INTEGER end{};
    end.QuadPart = static_cast<LONGLONG>(size);
    // Wine does not know the request; the file systems below it need none.
    if (file) {
        DeviceIoControl(file.Get(), FSCTL_SET_SPARSE, nullptr, 0, nullptr, 0, &returned, nullptr);
    }
    if (!file || SetFilePointerEx(file.Get(), end, nullptr, FILE_BEGIN) == FALSE ||
        SetEndOfFile(file.Get()) == FALSE) {
        throw std::runtime_error("GrowSparse: " + ToUtf8(path));
    }
}

}  // namespace orvex::testing
