#include "settings/StoreFiles.h"
#include "support/Text.h"

namespace orvex {
namespace {

namespace fs = std::filesystem;
using fs::perms;

constexpr perms kAllRead = perms::owner_read | perms::group_read | perms::others_read;
constexpr perms kAllEnter = perms::group_exec | perms::others_exec;

}  // namespace

fs::path SystemPathOf(const fs::path& file) {
    return file;
}

StoreFileKind KindOfStoreFile(const fs::path& file, std::chrono::steady_clock::time_point) {
    std::error_code error;
    switch (fs::status(file, error).type()) {
        case fs::file_type::not_found:
            return StoreFileKind::Nothing;
        case fs::file_type::regular:
            return StoreFileKind::Regular;
        case fs::file_type::none:
            return StoreFileKind::NoAccess;
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
    RemoveStoreFile(part);
    return false;
}

void RemoveStoreFile(const fs::path& file) {
    std::error_code error;
    fs::remove(file, error);
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
    return ToUtf8(FromPath(file));
}

const char* SqliteFileSystem() {
    return nullptr;
}

}  // namespace orvex
