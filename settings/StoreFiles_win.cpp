#include <windows.h>

#include <algorithm>
#include <string>
#include <string_view>
#include <thread>
#include <utility>
#include <vector>

#include "settings/StoreFiles.h"
#include "support/Handle_win.h"
#include "support/Text.h"

namespace orvex {
namespace {

namespace fs = std::filesystem;

constexpr DWORD kShareAll = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;

bool IsNotThere(DWORD error) {
    return error == ERROR_FILE_NOT_FOUND || error == ERROR_PATH_NOT_FOUND;
}

StoreFileKind KindOf(HANDLE file) {
    BY_HANDLE_FILE_INFORMATION information{};
    const bool isFile = GetFileType(file) == FILE_TYPE_DISK &&
                        GetFileInformationByHandle(file, &information) != FALSE &&
                        (information.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) == 0;
    return isFile ? StoreFileKind::Regular : StoreFileKind::Other;
}

/// The user whom this process acts for, as a SID in text form; empty when that cannot be told.
std::wstring UserSid() {
    HANDLE opened = nullptr;
    if (OpenProcessToken(GetCurrentProcess(), TOKEN_QUERY, &opened) == FALSE) {
        return {};
    }
    const Handle token(opened);
    alignas(TOKEN_USER) std::byte user[sizeof(TOKEN_USER) + SECURITY_MAX_SID_SIZE];
    DWORD size = sizeof(user);
    wchar_t* text = nullptr;
    if (GetTokenInformation(token.Get(), TokenUser, user, size, &size) == FALSE ||
        ConvertSidToStringSidW(reinterpret_cast<TOKEN_USER*>(user)->User.Sid, &text) == FALSE) {
        return {};
    }
    const LocalMemory<wchar_t> sid(text);
    return sid.get();
}

constexpr const wchar_t* kHandedOn = L"OICI";  // by a folder, to files and folders made in it
constexpr const wchar_t* kNotHandedOn = L"";

/// Full access for the system, the administrators and the user, nothing from the folder above; null when the
/// user is not known.
LocalMemory<void> RightsFor(StoreReaders readers, std::wstring_view handedOn) {
    const std::wstring user = UserSid();
    std::wstring rights = L"D:P";
    for (const std::wstring& who : {std::wstring(L"SY"), std::wstring(L"BA"), user}) {
        rights.append(L"(A;").append(handedOn).append(L";FA;;;").append(who).append(L")");
    }
    if (readers == StoreReaders::Everybody) {
        rights.append(L"(A;").append(handedOn).append(L";FRFX;;;WD)");
    }
    return user.empty() ? nullptr : SecurityDescriptorOf(rights);
}

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

StoreFileKind KindOfStoreFile(const fs::path& file, Clock::time_point until) {
    constexpr auto kPause = std::chrono::milliseconds(5);
    while (true) {
        // Reading is asked for, because SQLite would try for more than a second to open what it may not.
        const Handle handle(CreateFileW(file.c_str(), FILE_READ_DATA, kShareAll, nullptr, OPEN_EXISTING,
                                        FILE_FLAG_BACKUP_SEMANTICS, nullptr));
        if (handle) {
            return KindOf(handle.Get());
        }
        const DWORD error = GetLastError();
        if (error == ERROR_CANT_RESOLVE_FILENAME) {
            return StoreFileKind::Other;
        }
        if (error != ERROR_SHARING_VIOLATION) {
            return IsNotThere(error) ? StoreFileKind::Nothing : StoreFileKind::NoAccess;
        }
        if (Clock::now() >= until) {
            return StoreFileKind::Busy;
        }
        std::this_thread::sleep_for(kPause);
    }
}

bool IsFreeName(const fs::path& file) {
    return GetFileAttributesW(file.c_str()) == INVALID_FILE_ATTRIBUTES && IsNotThere(GetLastError());
}

bool CopyStoreFile(const fs::path& file, const fs::path& copy, std::uintmax_t largest) {
    const std::wstring part = copy.native() + L".part";
    WIN32_FILE_ATTRIBUTE_DATA data{};
    if (GetFileAttributesExW(file.c_str(), GetFileExInfoStandard, &data) == FALSE ||
        ((std::uintmax_t{data.nFileSizeHigh} << 32U) | data.nFileSizeLow) > largest) {
        return false;
    }
    if (CopyFileW(file.c_str(), part.c_str(), FALSE) != FALSE &&
        MoveFileExW(part.c_str(), copy.c_str(), MOVEFILE_WRITE_THROUGH) != FALSE) {
        return true;
    }
    DeleteFileW(part.c_str());
    return false;
}

void MakeStoreFolder(const fs::path& folder, StoreReaders readers) {
    std::vector<fs::path> missing;
    for (fs::path above = folder; IsFreeName(above); above = above.parent_path()) {
        if (above == above.parent_path()) {
            return;  // a drive that is not there
        }
        missing.push_back(above);
    }
    const LocalMemory<void> rights = RightsFor(readers, kHandedOn);
    SECURITY_ATTRIBUTES attributes{sizeof(attributes), rights.get(), FALSE};
    while (!missing.empty()) {
        const bool isLast = missing.size() == 1;
        CreateDirectoryW(missing.back().c_str(), isLast && rights ? &attributes : nullptr);
        missing.pop_back();
    }
}

void SetStoreFileReaders(const fs::path& file, StoreReaders readers) {
    if (const LocalMemory<void> rights = RightsFor(readers, kNotHandedOn)) {
        SetFileSecurityW(file.c_str(), DACL_SECURITY_INFORMATION, rights.get());
    }
}

std::string SqliteNameOf(const fs::path& file) {
    return ToUtf8(file.native());
}

const char* SqliteFileSystem() {
    return "win32-longpath";
}

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
