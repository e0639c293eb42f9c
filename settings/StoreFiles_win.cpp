#include <windows.h>

#include <sddl.h>

#include <thread>
#include <vector>

#include "settings/SecurityDescriptor_win.h"
#include "settings/StoreFiles.h"
#include "support/Handle_win.h"
#include "support/LongPath_win.h"
#include "support/Text.h"

namespace orvex {
namespace {

namespace fs = std::filesystem;

// SQLite and the copies add to a name, so the prefix comes before a name is too long itself.
constexpr std::size_t kLongName = 200;
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
LocalMemory<void> RightsFor(StoreReaders readers, const std::wstring& handedOn) {
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

}  // namespace

fs::path SystemPathOf(const fs::path& file) {
    const std::wstring full = AbsolutePath(file.native());
    return full.size() < kLongName ? fs::path(full) : PrefixedPath(full);
}

StoreFileKind KindOfStoreFile(const fs::path& file, std::chrono::steady_clock::time_point until) {
    constexpr auto kPause = std::chrono::milliseconds(5);
    while (true) {
        // Reading is asked for, because SQLite would try for more than a second to open what it may not.
        const Handle handle(CreateFileW(file.c_str(), FILE_READ_DATA, kShareAll, nullptr, OPEN_EXISTING,
                                        FILE_FLAG_BACKUP_SEMANTICS, nullptr));
        if (handle) {
            return KindOf(handle.Get());
        }
        const DWORD error = GetLastError();
        if (error != ERROR_SHARING_VIOLATION) {
            return IsNotThere(error) ? StoreFileKind::Nothing : StoreFileKind::NoAccess;
        }
        if (std::chrono::steady_clock::now() >= until) {
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

void RemoveStoreFile(const fs::path& file) {
    DeleteFileW(file.c_str());
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

}  // namespace orvex
