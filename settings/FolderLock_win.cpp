#include "settings/FolderLock.h"

#include <windows.h>

#include <algorithm>
#include <string>
#include <utility>

#include "settings/SecurityDescriptor_win.h"
#include "support/Handle_win.h"

namespace orvex {
namespace {

using Clock = std::chrono::steady_clock;

/// A name that the folder alone has, by whatever path it is reached; empty when it is not there.
std::wstring MutexNameOf(const std::filesystem::path& folder) {
    const Handle handle(CreateFileW(folder.empty() ? L"." : folder.c_str(), FILE_READ_ATTRIBUTES,
                                    FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr,
                                    OPEN_EXISTING, FILE_FLAG_BACKUP_SEMANTICS, nullptr));
    BY_HANDLE_FILE_INFORMATION id{};
    if (!handle || GetFileInformationByHandle(handle.Get(), &id) == FALSE ||
        (id.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) == 0) {
        return {};
    }
    // "Global": a user may be logged on twice.
    return L"Global\\OrvexFolder-" + std::to_wstring(id.dwVolumeSerialNumber) + L"-" +
           std::to_wstring(id.nFileIndexHigh) + L"-" + std::to_wstring(id.nFileIndexLow);
}

/// The mutex of that name, which everybody may wait for: the same user's processes with and without
/// administrator's rights meet here, and different users at a shared folder.
Handle OpenMutexOf(const std::wstring& name) {
    const LocalMemory<void> rights = SecurityDescriptorOf(L"D:(A;;0x100001;;;WD)");
    SECURITY_ATTRIBUTES attributes{sizeof(attributes), rights.get(), FALSE};
    return Handle(CreateMutexExW(&attributes, name.c_str(), 0, SYNCHRONIZE | MUTEX_MODIFY_STATE));
}

DWORD MillisecondsUntil(Clock::time_point until) {
    const auto left = std::chrono::ceil<std::chrono::milliseconds>(until - Clock::now()).count();
    return static_cast<DWORD>(std::clamp<long long>(left, 0, INFINITE - 1));
}

}  // namespace

// A mutex, not a lock on a file: whoever waits for it stands in a line that the system keeps, where polling
// would have to hit the moment between two writes. Over a network each machine has a line of its own; what is
// in the file is guarded by SQLite's locks, here as there.
struct FolderLock::System {
    explicit System(Handle owned) : mutex(std::move(owned)) {}
    ~System() { ReleaseMutex(mutex.Get()); }
    System(const System&) = delete;
    System& operator=(const System&) = delete;

    Handle mutex;
};

FolderLock::FolderLock(const std::filesystem::path& folder, Clock::time_point until) {
    const std::wstring name = MutexNameOf(folder);
    if (name.empty()) {
        return;
    }
    Handle mutex = OpenMutexOf(name);
    if (!mutex) {
        isHeld_ = true;
        return;
    }
    switch (WaitForSingleObject(mutex.Get(), MillisecondsUntil(until))) {
        case WAIT_OBJECT_0:
        case WAIT_ABANDONED:  // its process has died; SQLite undoes what that left half done
            system_ = std::make_unique<System>(std::move(mutex));
            isHeld_ = true;
            break;
        default:
            break;
    }
}

FolderLock::~FolderLock() {
    Release();
}

void FolderLock::Release() {
    system_.reset();
    isHeld_ = false;
}

}  // namespace orvex
