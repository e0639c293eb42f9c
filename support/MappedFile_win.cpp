#include <windows.h>

#include <winioctl.h>

#include <algorithm>
#include <limits>

#include "support/FileTime_win.h"
#include "support/Handle_win.h"
#include "support/MappedFile.h"
#include "support/Text.h"

namespace orvex {
namespace {

HANDLE SystemHandle(std::intptr_t handle) {
    return reinterpret_cast<HANDLE>(handle);
}

SystemError LastError() {
    return static_cast<SystemError>(GetLastError());
}

DWORD LowPart(std::uint64_t value) {
    return static_cast<DWORD>(value & 0xFFFFFFFFU);
}

DWORD HighPart(std::uint64_t value) {
    return static_cast<DWORD>(value >> 32U);
}

void CloseAndForget(std::intptr_t& handle, std::intptr_t none) {
    if (handle != none) {
        CloseHandle(SystemHandle(std::exchange(handle, none)));
    }
}

}  // namespace

void MappedView::Unmap() noexcept {
    if (base_ != nullptr) {
        UnmapViewOfFile(base_);
    }
}

SystemError MappedFile::Open(const std::wstring& path, bool readOnly) {
    Close();
    // What is gone by now is not made anew as an empty file.
    Handle file(CreateFileW(ToPath(path).c_str(), readOnly ? GENERIC_READ : GENERIC_READ | GENERIC_WRITE,
                            FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr, OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL,
                            nullptr));
    if (!file) {
        return LastError();
    }
    // Pipes, consoles and serial ports can be opened by a name as well; they have neither size nor offsets.
    if (GetFileType(file.Get()) != FILE_TYPE_DISK) {
        return ERROR_BAD_FILE_TYPE;
    }
    BY_HANDLE_FILE_INFORMATION facts{};
    if (GetFileInformationByHandle(file.Get(), &facts) == FALSE) {
        return LastError();
    }
    openedSize_ = Joined(facts.nFileSizeHigh, facts.nFileSizeLow);
    openedTime_ = FileTimeOf(facts.ftLastWriteTime);
    handle_ = reinterpret_cast<std::intptr_t>(file.Release());
    readOnly_ = readOnly;
    return 0;
}

SystemError MappedFile::CreateMapping() {
    if (mapping_ != kNone) {
        return 0;
    }
    const HANDLE mapping = CreateFileMappingW(SystemHandle(handle_), nullptr,
                                              readOnly_ ? PAGE_READONLY : PAGE_READWRITE, 0, 0, nullptr);
    if (mapping == nullptr) {
        return LastError();
    }
    mapping_ = reinterpret_cast<std::intptr_t>(mapping);
    return 0;
}

void MappedFile::Close() {
    CloseAndForget(mapping_, kNone);
    CloseAndForget(handle_, kNone);
}

SystemError MappedFile::Size(std::uint64_t& size) const {
    LARGE_INTEGER bytes{};
    if (GetFileSizeEx(SystemHandle(handle_), &bytes) == FALSE) {
        return LastError();
    }
    size = static_cast<std::uint64_t>(bytes.QuadPart);
    return 0;
}

SystemError MappedFile::ReadAt(std::uint64_t offset, std::span<std::byte> buffer, std::size_t& read) const {
    constexpr std::size_t kLargestRead = std::size_t{1} << 30U;  // the call counts with 32 bits
    read = 0;
    if (offset > static_cast<std::uint64_t>(std::numeric_limits<LONGLONG>::max())) {
        return ERROR_INVALID_PARAMETER;
    }
    while (read < buffer.size()) {
        OVERLAPPED place{};
        place.Offset = LowPart(offset + read);
        place.OffsetHigh = HighPart(offset + read);
        const auto wanted = static_cast<DWORD>(std::min(buffer.size() - read, kLargestRead));
        DWORD got = 0;
        if (ReadFile(SystemHandle(handle_), buffer.data() + read, wanted, &got, &place) == FALSE &&
            GetLastError() != ERROR_HANDLE_EOF) {
            return LastError();
        }
        if (got == 0) {
            break;
        }
        read += got;
    }
    return 0;
}

SystemError MappedFile::WriteAt(std::uint64_t offset, std::span<const std::byte> bytes) const {
    constexpr std::size_t kLargestWrite = std::size_t{1} << 30U;  // the call counts with 32 bits
    if (offset > static_cast<std::uint64_t>(std::numeric_limits<LONGLONG>::max()) - bytes.size()) {
        return ERROR_FILE_TOO_LARGE;
    }
    for (std::size_t written = 0; written < bytes.size();) {
        OVERLAPPED place{};
        place.Offset = LowPart(offset + written);
        place.OffsetHigh = HighPart(offset + written);
        const auto wanted = static_cast<DWORD>(std::min(bytes.size() - written, kLargestWrite));
        DWORD put = 0;
        if (WriteFile(SystemHandle(handle_), bytes.data() + written, wanted, &put, &place) == FALSE) {
            return LastError();
        }
        if (put == 0) {
            return ERROR_DISK_FULL;
        }
        written += put;
    }
    return 0;
}

SystemError MappedFile::Reserve(std::uint64_t size) const {
    FILE_END_OF_FILE_INFO end{};
    if (size > static_cast<std::uint64_t>(std::numeric_limits<LONGLONG>::max())) {
        return ERROR_FILE_TOO_LARGE;
    }
    end.EndOfFile.QuadPart = static_cast<LONGLONG>(size);
    // A write far behind the others would fill everything before it with zeros. Not every file system can.
    DWORD bytes = 0;
    DeviceIoControl(SystemHandle(handle_), FSCTL_SET_SPARSE, nullptr, 0, nullptr, 0, &bytes, nullptr);
    return SetFileInformationByHandle(SystemHandle(handle_), FileEndOfFileInfo, &end, sizeof(end)) == FALSE
               ? LastError()
               : 0;
}

SystemError MappedFile::Sync() const {
    return FlushFileBuffers(SystemHandle(handle_)) == FALSE ? LastError() : 0;
}

SystemError MappedFile::Map(std::uint64_t offset, std::uint64_t length, bool writable,
                            MappedView& view) const {
    std::uint64_t size = 0;
    if (const SystemError error = Size(size)) {
        return error;
    }
    if (length == 0 || offset > size || length > size - offset) {
        return ERROR_INVALID_PARAMETER;
    }
    const std::uint64_t skip = offset % AllocationGranularity();
    const std::size_t mapped = static_cast<std::size_t>(length + skip);
    void* base =
        MapViewOfFile(SystemHandle(mapping_), writable ? FILE_MAP_READ | FILE_MAP_WRITE : FILE_MAP_READ,
                      HighPart(offset - skip), LowPart(offset - skip), mapped);
    if (base == nullptr) {
        return LastError();
    }
    view = MappedView(static_cast<std::byte*>(base), mapped, static_cast<std::size_t>(skip),
                      static_cast<std::size_t>(length));
    return 0;
}

std::uint64_t MappedFile::AllocationGranularity() {
    static const DWORD granularity = [] {
        SYSTEM_INFO system{};
        GetSystemInfo(&system);
        return system.dwAllocationGranularity;
    }();
    return granularity;
}

}  // namespace orvex
