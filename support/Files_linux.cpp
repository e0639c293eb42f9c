#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <filesystem>
#include <limits>
#include <system_error>

#include "support/FileTime_linux.h"
#include "support/Files.h"
#include "support/Text.h"

namespace orvex {
namespace {

namespace fs = std::filesystem;

/// What a path names, links followed; the error otherwise. Not std::filesystem, which takes paths apart
/// before it asks the system: a list asks for several files per row.
SystemError StatusOf(const std::wstring& path, struct stat& status) {
    return stat(ToUtf8(path).c_str(), &status) == 0 ? 0 : errno;
}

FileKind KindOfType(fs::file_type type) {
    switch (type) {
        case fs::file_type::none:
            return FileKind::NoAccess;
        case fs::file_type::not_found:
            return FileKind::Missing;
        case fs::file_type::regular:
            return FileKind::File;
        case fs::file_type::directory:
            return FileKind::Folder;
        default:
            return FileKind::Other;
    }
}

FolderEntry Describe(const fs::directory_entry& entry) {
    std::error_code unknown;  // of one entry: a link that leads nowhere is no file and no folder
    const FileKind kind = KindOfType(entry.status(unknown).type());
    return {FromPath(entry.path()), kind, entry.is_symlink(unknown)};
}

}  // namespace

std::wstring SystemErrorText(SystemError error) {
    return FromUtf8(std::generic_category().message(error));
}

SystemError LastStreamError() {
    return errno != 0 ? errno : EIO;
}

void ForgetStreamError() {
    errno = 0;
}

FileKind KindOf(const std::wstring& path) {
    struct stat status {};
    switch (StatusOf(path, status)) {
        case 0:
            return S_ISREG(status.st_mode)   ? FileKind::File
                   : S_ISDIR(status.st_mode) ? FileKind::Folder
                                             : FileKind::Other;
        case ENOENT:
        case ENOTDIR:
        case ENAMETOOLONG:
            return FileKind::Missing;
        default:
            return FileKind::NoAccess;
    }
}

bool CanCreateFilesIn(const std::filesystem::path& folder) {
    // The system's answer counts read-only file systems and access lists, which permission bits do not show.
    return FolderExists(FromPath(folder)) && access(folder.c_str(), W_OK | X_OK) == 0;
}

std::optional<std::uint64_t> FileSizeOf(const std::wstring& path) {
    struct stat status {};
    return StatusOf(path, status) == 0 && S_ISREG(status.st_mode)
               ? std::optional(static_cast<std::uint64_t>(status.st_size))
               : std::nullopt;
}

std::optional<FileTime> LastWriteTime(const std::wstring& path) {
    struct stat status {};
    return StatusOf(path, status) == 0 ? std::optional(FileTimeOf(status.st_mtim)) : std::nullopt;
}

SystemError CopyLastWriteTime(const std::wstring& from, const std::wstring& to) {
    std::error_code error;
    const auto time = fs::last_write_time(ToPath(from), error);
    if (!error) {
        fs::last_write_time(ToPath(to), time, error);
    }
    return error.value();
}

bool IsSameFile(const std::wstring& a, const std::wstring& b) {
    std::error_code error;
    return fs::equivalent(ToPath(a), ToPath(b), error);
}

std::wstring CanonicalPath(const std::wstring& path) {
    std::error_code error;
    const fs::path canonical = fs::canonical(ToPath(path), error);
    return error ? path : FromPath(canonical);
}

SystemError RenameFile(const std::wstring& from, const std::wstring& to) {
    std::error_code error;
    fs::rename(ToPath(from), ToPath(to), error);
    return error.value();
}

SystemError RenameToFreeName(const std::wstring& from, const std::wstring& to, bool& taken) {
    const fs::path source = ToPath(from);
    const fs::path target = ToPath(to);
    SystemError error = 0;
    if (renameat2(AT_FDCWD, source.c_str(), AT_FDCWD, target.c_str(), RENAME_NOREPLACE) != 0) {
        error = errno;
    }
    // Some file systems know no such renaming; a second name is refused there where it is taken.
    if (error == EINVAL || error == ENOSYS) {
        error = link(source.c_str(), target.c_str()) == 0 ? 0 : errno;
        if (error == 0) {
            unlink(source.c_str());
        }
    }
    // And some know no second names.
    if (error == EPERM || error == EOPNOTSUPP) {
        struct stat there {};
        error = lstat(target.c_str(), &there) == 0 ? EEXIST : RenameFile(from, to);
    }
    taken = error == EEXIST;
    return error;
}

SystemError RemoveFile(const std::wstring& path) {
    std::error_code error;
    return fs::remove(ToPath(path), error) || error ? error.value() : ENOENT;
}

namespace {

/// Locks a byte far behind any data for one descriptor, so that no writer is in the way.
SystemError LockOwner(int descriptor) {
    struct flock lock {};
    lock.l_type = F_WRLCK;
    lock.l_whence = SEEK_SET;
    lock.l_start = std::numeric_limits<off_t>::max() - 1;
    lock.l_len = 1;
    return fcntl(descriptor, F_OFD_SETLK, &lock) == 0 ? 0 : errno;
}

}  // namespace

OwnedFile::~OwnedFile() {
    if (handle_ != kNone) {
        close(static_cast<int>(handle_));
    }
}

SystemError OwnedFile::Create(const std::wstring& path) {
    const int descriptor = open(ToUtf8(path).c_str(), O_RDWR | O_CREAT | O_EXCL | O_CLOEXEC, 0666);
    if (descriptor < 0) {
        return errno;
    }
    handle_ = descriptor;
    const SystemError error = LockOwner(descriptor);
    // Another process may have found the file before it was locked, and removed it.
    struct stat status {};
    const bool isGone = fstat(descriptor, &status) == 0 && status.st_nlink == 0;
    return error == EAGAIN || error == EACCES || isGone ? EAGAIN : 0;
}

void OwnedFile::RemoveIfAbandoned(const std::wstring& path) {
    const std::string name = ToUtf8(path);
    const int descriptor = open(name.c_str(), O_RDWR | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC);
    if (descriptor < 0) {
        return;
    }
    if (LockOwner(descriptor) == 0) {
        unlink(name.c_str());
    }
    close(descriptor);
}

SystemError CreateFolders(const std::wstring& path) {
    std::error_code error;
    fs::create_directories(ToPath(path), error);
    return error.value();
}

std::optional<std::uint64_t> FreeSpaceIn(const std::wstring& folder) {
    std::error_code error;
    const auto space = fs::space(ToPath(folder), error);
    return error ? std::nullopt : std::optional<std::uint64_t>(space.available);
}

SystemError ListFolder(const std::wstring& folder, const std::function<bool(FolderEntry entry)>& visit) {
    std::error_code error;
    fs::directory_iterator entry(ToPath(folder), error);
    for (; !error && entry != fs::directory_iterator(); entry.increment(error)) {
        if (!visit(Describe(*entry))) {
            break;
        }
    }
    return error.value();
}

}  // namespace orvex
