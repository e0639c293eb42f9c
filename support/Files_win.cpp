#include <windows.h>

#include <array>
#include <cerrno>
#include <cstdlib>
#include <memory>

#include "support/FileTime_win.h"
#include "support/Files.h"
#include "support/Format.h"
#include "support/Handle_win.h"
#include "support/Text.h"

namespace orvex {
namespace {

constexpr DWORD kShareAll = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;

SystemError Result(BOOL succeeded) {
    return succeeded != FALSE ? 0 : static_cast<SystemError>(GetLastError());
}

/// A file or folder opened for what the access right says; links are followed.
Handle OpenAny(const std::wstring& path, DWORD access) {
    return Handle(CreateFileW(ToPath(path).c_str(), access, kShareAll, nullptr, OPEN_EXISTING,
                              FILE_FLAG_BACKUP_SEMANTICS, nullptr));
}

std::optional<BY_HANDLE_FILE_INFORMATION> FactsByHandle(const std::wstring& path) {
    const Handle file = OpenAny(path, FILE_READ_ATTRIBUTES);
    BY_HANDLE_FILE_INFORMATION facts{};
    return file && GetFileInformationByHandle(file.Get(), &facts) != FALSE ? std::optional(facts)
                                                                           : std::nullopt;
}

/// Attributes, size and time, of what a link leads to.
std::optional<WIN32_FILE_ATTRIBUTE_DATA> FactsOf(const std::wstring& path) {
    WIN32_FILE_ATTRIBUTE_DATA facts{};
    if (GetFileAttributesExW(ToPath(path).c_str(), GetFileExInfoStandard, &facts) == FALSE) {
        return std::nullopt;
    }
    if ((facts.dwFileAttributes & FILE_ATTRIBUTE_REPARSE_POINT) != 0) {
        const auto target = FactsByHandle(path);
        if (!target) {
            return std::nullopt;
        }
        facts.dwFileAttributes = target->dwFileAttributes;
        facts.ftLastWriteTime = target->ftLastWriteTime;
        facts.nFileSizeHigh = target->nFileSizeHigh;
        facts.nFileSizeLow = target->nFileSizeLow;
    }
    return facts;
}

FileKind KindOfAttributes(DWORD attributes) {
    if ((attributes & FILE_ATTRIBUTE_DEVICE) != 0) {
        return FileKind::Other;
    }
    return (attributes & FILE_ATTRIBUTE_DIRECTORY) != 0 ? FileKind::Folder : FileKind::File;
}

/// Why a file could not be replaced. A mapped one counts as one without access rights for the system,
/// although it can be opened for deletion; one that may not be written really lacks them.
SystemError ReasonNotReplaced(const std::wstring& path, SystemError error) {
    if (error == ERROR_USER_MAPPED_FILE || error == ERROR_LOCK_VIOLATION) {
        return ERROR_SHARING_VIOLATION;
    }
    const auto facts = FactsOf(path);
    constexpr DWORD kNotReplaced = FILE_ATTRIBUTE_READONLY | FILE_ATTRIBUTE_DIRECTORY;
    if (error != ERROR_ACCESS_DENIED || !facts || (facts->dwFileAttributes & kNotReplaced) != 0) {
        return error;
    }
    return OpenAny(path, DELETE) || GetLastError() == ERROR_SHARING_VIOLATION ? ERROR_SHARING_VIOLATION
                                                                              : error;
}

struct CloseFind {
    using pointer = HANDLE;
    void operator()(HANDLE find) const {
        if (find != INVALID_HANDLE_VALUE) {
            FindClose(find);
        }
    }
};

/// The native path with a backslash behind it, unless it is empty or a drive alone ("C:" is the current
/// folder of that drive).
std::wstring WithBackslash(std::wstring folder) {
    if (!folder.empty() && folder.back() != L'\\' && folder.back() != L':') {
        folder += L'\\';
    }
    return folder;
}

bool IsDots(const wchar_t* name) {
    return name[0] == L'.' && (name[1] == L'\0' || (name[1] == L'.' && name[2] == L'\0'));
}

FolderEntry Describe(const std::wstring& start, const WIN32_FIND_DATAW& found) {
    FolderEntry entry{start + found.cFileName, KindOfAttributes(found.dwFileAttributes)};
    // Other reparse points, such as a file that lies in a cloud until it is read, are what they seem.
    entry.isLink = (found.dwFileAttributes & FILE_ATTRIBUTE_REPARSE_POINT) != 0 &&
                   IsReparseTagNameSurrogate(found.dwReserved0);
    if (entry.isLink) {
        entry.kind = KindOf(entry.path);
    }
    return entry;
}

}  // namespace

std::wstring SystemErrorText(SystemError error) {
    std::array<wchar_t, 2048> buffer{};
    const DWORD length = FormatMessageW(FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS, nullptr,
                                        static_cast<DWORD>(error), 0, buffer.data(),
                                        static_cast<DWORD>(buffer.size()), nullptr);
    std::wstring text(buffer.data(), length);
    text.erase(text.find_last_not_of(L"\r\n ") + 1);
    return text.empty() ? FormatText(Text(text::kSystemErrorNumber), {error}) : text;
}

SystemError LastStreamError() {
    // The runtime keeps the system's number beside errno, but has none for a write that wrote nothing.
    if (_doserrno != 0) {
        return static_cast<SystemError>(_doserrno);
    }
    return errno == ENOSPC ? ERROR_DISK_FULL : ERROR_IO_DEVICE;
}

void ForgetStreamError() {
    errno = 0;
    _doserrno = 0;
}

FileKind KindOf(const std::wstring& path) {
    const auto facts = FactsOf(path);
    if (facts) {
        return KindOfAttributes(facts->dwFileAttributes);
    }
    switch (GetLastError()) {
        case ERROR_ACCESS_DENIED:
        case ERROR_SHARING_VIOLATION:
        case ERROR_CANT_RESOLVE_FILENAME:
            return FileKind::NoAccess;
        default:
            return FileKind::Missing;
    }
}

bool CanCreateFilesIn(const std::filesystem::path& folder) {
    // The system's own answer counts access lists and shares, which attributes do not show. The slash keeps a
    // file of that name from being asked for the right to append data, which has the same number.
    const Handle handle = OpenAny(WithBackslash(FromPath(folder)), FILE_ADD_FILE);
    DWORD flags = 0;
    return handle && (GetVolumeInformationByHandleW(handle.Get(), nullptr, 0, nullptr, nullptr, &flags,
                                                    nullptr, 0) == FALSE ||
                      (flags & FILE_READ_ONLY_VOLUME) == 0);
}

std::optional<std::uint64_t> FileSizeOf(const std::wstring& path) {
    const auto facts = FactsOf(path);
    if (!facts || KindOfAttributes(facts->dwFileAttributes) != FileKind::File) {
        return std::nullopt;
    }
    return Joined(facts->nFileSizeHigh, facts->nFileSizeLow);
}

std::optional<FileTime> LastWriteTime(const std::wstring& path) {
    const auto facts = FactsOf(path);
    if (!facts) {
        return std::nullopt;
    }
    return FileTimeOf(facts->ftLastWriteTime);
}

SystemError CopyLastWriteTime(const std::wstring& from, const std::wstring& to) {
    const auto facts = FactsOf(from);
    if (!facts) {
        return Result(FALSE);
    }
    const Handle file = OpenAny(to, FILE_WRITE_ATTRIBUTES);
    return Result(file && SetFileTime(file.Get(), nullptr, nullptr, &facts->ftLastWriteTime) != FALSE);
}

bool IsSameFile(const std::wstring& a, const std::wstring& b) {
    const auto first = FactsByHandle(a);
    const auto second = FactsByHandle(b);
    return first && second && first->dwVolumeSerialNumber == second->dwVolumeSerialNumber &&
           first->nFileIndexHigh == second->nFileIndexHigh && first->nFileIndexLow == second->nFileIndexLow;
}

std::wstring CanonicalPath(const std::wstring& path) {
    const Handle file = OpenAny(path, FILE_READ_ATTRIBUTES);
    if (!file) {
        return path;
    }
    std::wstring name(MAX_PATH, L'\0');
    for (;;) {
        const auto size = static_cast<DWORD>(name.size());
        const DWORD length = GetFinalPathNameByHandleW(file.Get(), name.data(), size, FILE_NAME_NORMALIZED);
        name.resize(length);
        if (length < size) {
            return length == 0 ? path : NativePath(name);
        }
    }
}

SystemError RenameFile(const std::wstring& from, const std::wstring& to) {
    const SystemError error =
        Result(MoveFileExW(ToPath(from).c_str(), ToPath(to).c_str(), MOVEFILE_REPLACE_EXISTING));
    return error == 0 ? 0 : ReasonNotReplaced(to, error);
}

SystemError RenameToFreeName(const std::wstring& from, const std::wstring& to, bool& taken) {
    const SystemError error = Result(MoveFileExW(ToPath(from).c_str(), ToPath(to).c_str(), 0));
    taken = error == ERROR_ALREADY_EXISTS || error == ERROR_FILE_EXISTS;
    return error;
}

SystemError RemoveFile(const std::wstring& path) {
    const std::filesystem::path native = ToPath(path);
    const DWORD attributes = GetFileAttributesW(native.c_str());
    const bool isFolder =
        attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_DIRECTORY) != 0;
    return Result(isFolder ? RemoveDirectoryW(native.c_str()) : DeleteFileW(native.c_str()));
}

// Whoever has the file open owns it: a file that is open is not opened a second time without sharing.
OwnedFile::~OwnedFile() {
    if (handle_ != kNone) {
        CloseHandle(reinterpret_cast<HANDLE>(handle_));
    }
}

SystemError OwnedFile::Create(const std::wstring& path) {
    Handle file(CreateFileW(ToPath(path).c_str(), GENERIC_READ, kShareAll, nullptr, CREATE_NEW,
                            FILE_ATTRIBUTE_NORMAL, nullptr));
    if (!file) {
        return static_cast<SystemError>(GetLastError());
    }
    handle_ = reinterpret_cast<std::intptr_t>(file.Release());
    return 0;
}

void OwnedFile::RemoveIfAbandoned(const std::wstring& path) {
    const Handle file(CreateFileW(ToPath(path).c_str(), DELETE, 0, nullptr, OPEN_EXISTING,
                                  FILE_FLAG_DELETE_ON_CLOSE | FILE_FLAG_OPEN_REPARSE_POINT, nullptr));
}

SystemError CreateFolders(const std::wstring& path) {
    if (path.empty() || FolderExists(path)) {
        return 0;
    }
    const std::wstring above = FolderOf(path);
    if (above != path) {
        if (const SystemError error = CreateFolders(above)) {
            return error;
        }
    }
    const SystemError error = Result(CreateDirectoryW(ToPath(path).c_str(), nullptr));
    return error == ERROR_ALREADY_EXISTS && FolderExists(path) ? 0 : error;
}

std::optional<std::uint64_t> FreeSpaceIn(const std::wstring& folder) {
    ULARGE_INTEGER available{};
    return GetDiskFreeSpaceExW(ToPath(folder).c_str(), &available, nullptr, nullptr) == FALSE
               ? std::nullopt
               : std::optional<std::uint64_t>(available.QuadPart);
}

SystemError ListFolder(const std::wstring& folder, const std::function<bool(FolderEntry entry)>& visit) {
    const std::wstring start = WithBackslash(NativePath(folder));
    WIN32_FIND_DATAW found{};
    const std::unique_ptr<HANDLE, CloseFind> find(
        FindFirstFileExW(ToPath(start + L"*").c_str(), FindExInfoBasic, &found, FindExSearchNameMatch,
                         nullptr, FIND_FIRST_EX_LARGE_FETCH));
    if (find.get() == INVALID_HANDLE_VALUE) {
        const SystemError error = Result(FALSE);
        // The root of an empty volume has not even the entries "." and "..".
        return error == ERROR_FILE_NOT_FOUND && FolderExists(folder) ? 0 : error;
    }
    do {
        if (!IsDots(found.cFileName) && !visit(Describe(start, found))) {
            return 0;
        }
    } while (FindNextFileW(find.get(), &found) != FALSE);
    const SystemError error = Result(FALSE);
    return error == ERROR_NO_MORE_FILES ? 0 : error;
}

}  // namespace orvex
