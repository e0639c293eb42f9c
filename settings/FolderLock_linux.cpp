#include "settings/FolderLock.h"

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

#include <cerrno>
#include <thread>

namespace orvex {

FolderLock::FolderLock(const std::filesystem::path& folder, std::chrono::steady_clock::time_point until) {
    constexpr auto kPause = std::chrono::microseconds(500);
    const char* name = folder.empty() ? "." : folder.c_str();
    descriptor_ = open(name, O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (descriptor_ < 0) {
        return;
    }
    while (true) {
        isHeld_ = flock(descriptor_, LOCK_EX | LOCK_NB) == 0 || (errno != EWOULDBLOCK && errno != EINTR);
        if (isHeld_ || std::chrono::steady_clock::now() >= until) {
            return;
        }
        std::this_thread::sleep_for(kPause);
    }
}

void FolderLock::Release() {
    if (descriptor_ >= 0) {
        close(descriptor_);
    }
    descriptor_ = -1;
    isHeld_ = false;
}

}  // namespace orvex
