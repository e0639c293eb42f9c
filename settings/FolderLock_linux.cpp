#include "settings/FolderLock.h"

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

#include <cerrno>
#include <thread>

namespace orvex {

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
