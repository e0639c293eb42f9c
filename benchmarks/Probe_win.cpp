#include <windows.h>

#include <psapi.h>

#include <heapapi.h>
#include <process.h>

#include <algorithm>
#include <array>
#include <cstring>

#include "benchmarks/Probe.h"
#include "support/Handle_win.h"
#include "support/Text.h"

namespace orvex::bench {
namespace {

std::uint64_t Read(HANDLE file, char* target, std::size_t size) {
    DWORD read = 0;
    return ReadFile(file, target, static_cast<DWORD>(size), &read, nullptr) != FALSE ? read : 0;
}

std::uint64_t BytesInUse(HANDLE heap) {
    std::uint64_t bytes = 0;
    PROCESS_HEAP_ENTRY entry{};
    HeapLock(heap);
    while (HeapWalk(heap, &entry) != FALSE) {
        bytes += (entry.wFlags & PROCESS_HEAP_ENTRY_BUSY) != 0 ? entry.cbData : 0;
    }
    HeapUnlock(heap);
    return bytes;
}

}  // namespace

std::uint64_t ReadBarely(const std::string& path) {
    constexpr std::size_t kHeader = 375;
    std::array<char, 65536> buffer;
    const Handle file(CreateFileW(FromUtf8(path).c_str(), GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE,
                                  nullptr, OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr));
    LARGE_INTEGER size{};
    GetFileSizeEx(file.Get(), &size);
    std::uint64_t bytes = Read(file.Get(), buffer.data(), kHeader);
    std::uint32_t start = 0;
    std::memcpy(&start, buffer.data() + 96, sizeof(start));
    bytes += Read(file.Get(), buffer.data(), std::min<std::size_t>(buffer.size(), start) - kHeader);
    return bytes;
}

std::optional<int> RunProgram(const std::vector<std::string>& arguments) {
    // The C runtime joins arguments with blanks; quotes keep those with blanks together.
    std::vector<std::wstring> texts;
    texts.reserve(arguments.size());
    for (const std::string& argument : arguments) {
        texts.push_back(L'"' + FromUtf8(argument) + L'"');
    }
    std::vector<const wchar_t*> pointers;
    pointers.reserve(texts.size() + 1);
    for (const std::wstring& text : texts) {
        pointers.push_back(text.c_str());
    }
    pointers.push_back(nullptr);
    const std::intptr_t result = _wspawnvp(_P_WAIT, FromUtf8(arguments.front()).c_str(), pointers.data());
    return result == -1 ? std::nullopt : std::optional(static_cast<int>(result));
}

bool CopyWithSystem(const std::wstring& from, const std::wstring& to) {
    return CopyFileW(ToPath(from).c_str(), ToPath(to).c_str(), FALSE) != FALSE;
}

std::uint64_t PeakMemory() {
    PROCESS_MEMORY_COUNTERS counters{};
    K32GetProcessMemoryInfo(GetCurrentProcess(), &counters, sizeof(counters));
    return counters.PeakWorkingSetSize;
}

void ResetPeakMemory() {}

double ProcessorTime() {
    FILETIME created{};
    FILETIME ended{};
    FILETIME kernel{};
    FILETIME user{};
    GetProcessTimes(GetCurrentProcess(), &created, &ended, &kernel, &user);
    const auto milliseconds = [](const FILETIME& time) {
        constexpr double kStepsPerMillisecond = 1e4;
        return static_cast<double>(std::uint64_t{time.dwHighDateTime} << 32U | time.dwLowDateTime) /
               kStepsPerMillisecond;
    };
    return milliseconds(kernel) + milliseconds(user);
}

std::uint64_t HeapInUse() {
    std::array<HANDLE, 64> heaps;
    const DWORD count =
        std::min<DWORD>(GetProcessHeaps(static_cast<DWORD>(heaps.size()), heaps.data()), heaps.size());
    std::uint64_t bytes = 0;
    for (DWORD i = 0; i < count; ++i) {
        bytes += BytesInUse(heaps[i]);
    }
    return bytes;
}

}  // namespace orvex::bench
