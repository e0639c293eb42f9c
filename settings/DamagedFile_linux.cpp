#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

#include <string>
#include <system_error>
#include <thread>

#include "settings/DamagedFile.h"

namespace orvex {
namespace {

constexpr int kMostKept = 1000;

/// The lock of a folder, which leaves no file behind. Held until destroyed.
class FolderLock {
  public:
    FolderLock(const std::filesystem::path& folder, std::chrono::steady_clock::time_point until)
        : descriptor_(open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC)) {
        while (descriptor_ >= 0 && !held_) {
            held_ = flock(descriptor_, LOCK_EX | LOCK_NB) == 0;
            if (!held_ && std::chrono::steady_clock::now() >= until) {
                break;
            }
            if (!held_) {
                std::this_thread::sleep_for(std::chrono::milliseconds(2));
            }
        }
    }
    ~FolderLock() {
        if (descriptor_ >= 0) {
            close(descriptor_);
        }
    }
    FolderLock(const FolderLock&) = delete;
    FolderLock& operator=(const FolderLock&) = delete;

    bool IsHeld() const { return held_; }

  private:
    int descriptor_;
    bool held_ = false;
};

std::filesystem::path FreeNameFor(const std::filesystem::path& file) {
    for (int number = 1; number <= kMostKept; ++number) {
        std::filesystem::path name = file;
        name += ".damaged-" + std::to_string(number);
        std::error_code error;
        if (!std::filesystem::exists(std::filesystem::symlink_status(name, error))) {
            return name;
        }
    }
    return {};
}

}  // namespace

std::filesystem::path SetDamagedFileAside(const std::filesystem::path& file,
                                          std::chrono::steady_clock::time_point until,
                                          const std::function<bool()>& isDamaged) {
    const std::filesystem::path parent = file.parent_path();
    const FolderLock lock(parent.empty() ? "." : parent, until);
    if (!lock.IsHeld() || !isDamaged()) {
        return {};
    }
    const std::filesystem::path kept = FreeNameFor(file);
    if (kept.empty()) {
        return {};
    }
    std::error_code error;
    // The journals go first: one that stayed would be played into the fresh file.
    for (const char* journal : {"-journal", "-wal", "-shm"}) {
        std::filesystem::path from = file;
        std::filesystem::path to = kept;
        std::filesystem::rename(from += journal, to += journal, error);
    }
    std::filesystem::rename(file, kept, error);
    return error ? std::filesystem::path() : kept;
}

}  // namespace orvex
