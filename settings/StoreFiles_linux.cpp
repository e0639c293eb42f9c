#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

#include <cerrno>
#include <thread>

#include "settings/StoreFiles.h"

namespace orvex {
namespace {

namespace fs = std::filesystem;
using fs::perms;

constexpr perms kAllRead = perms::owner_read | perms::group_read | perms::others_read;
constexpr perms kAllEnter = perms::group_exec | perms::others_exec;

}  // namespace

StoreFileKind KindOfStoreFile(const fs::path& file, std::chrono::steady_clock::time_point) {
    std::error_code error;
    switch (fs::status(file, error).type()) {
        case fs::file_type::not_found:
            return StoreFileKind::Nothing;
        case fs::file_type::regular:
            return StoreFileKind::Regular;
        case fs::file_type::none:
            return error == std::errc::too_many_symbolic_link_levels ? StoreFileKind::Other
                                                                     : StoreFileKind::NoAccess;
        default:
            return StoreFileKind::Other;
    }
}

bool IsFreeName(const fs::path& file) {
    std::error_code error;
    return !fs::exists(fs::symlink_status(file, error));
}

bool CopyStoreFile(const fs::path& file, const fs::path& copy, std::uintmax_t largest) {
    std::error_code error;
    const std::uintmax_t size = fs::file_size(file, error);
    if (error || size > largest) {
        return false;
    }
    fs::path part = copy;
    part += ".part";
    const bool isCopied = fs::copy_file(file, part, fs::copy_options::overwrite_existing, error);
    if (isCopied) {
        fs::rename(part, copy, error);
    }
    if (isCopied && !error) {
        return true;
    }
    fs::remove(part, error);
    return false;
}

void MakeStoreFolder(const fs::path& folder, StoreReaders readers) {
    std::error_code error;
    if (fs::create_directories(folder, error)) {
        const perms others = readers == StoreReaders::Everybody ? kAllRead | kAllEnter : perms::none;
        fs::permissions(folder, perms::owner_all | others, error);
    }
}

void SetStoreFileReaders(const fs::path& file, StoreReaders readers) {
    std::error_code error;
    const perms others = readers == StoreReaders::Everybody ? kAllRead : perms::none;
    fs::permissions(file, perms::owner_read | perms::owner_write | others, error);
}

std::string SqliteNameOf(const fs::path& file) {
    return file.native();
}

const char* SqliteFileSystem() {
    return nullptr;
}

/// The open folder.
struct FolderLock::System {
    explicit System(int opened) : descriptor(opened) {}
    ~System() { close(descriptor); }
    System(const System&) = delete;
    System& operator=(const System&) = delete;

    int descriptor;
};

FolderLock::FolderLock(const std::filesystem::path& folder, std::chrono::steady_clock::time_point until) {
    constexpr auto kPause = std::chrono::microseconds(500);
    const char* name = folder.empty() ? "." : folder.c_str();
    const int descriptor = open(name, O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (descriptor < 0) {
        return;
    }
    system_ = std::make_unique<System>(descriptor);
    while (true) {
        isHeld_ = flock(descriptor, LOCK_EX | LOCK_NB) == 0 || (errno != EWOULDBLOCK && errno != EINTR);
        if (isHeld_ || std::chrono::steady_clock::now() >= until) {
            return;
        }
        std::this_thread::sleep_for(kPause);
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
