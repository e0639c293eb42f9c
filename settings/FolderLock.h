#pragma once
#include <chrono>
#include <filesystem>

namespace orvex {

/// A lock that one process at a time has on a folder; it leaves no file there. Given back when destroyed.
class FolderLock {
  public:
    /// Waits for the lock until the given time. Where the file system has no such locks it counts as held.
    FolderLock(const std::filesystem::path& folder, std::chrono::steady_clock::time_point until);
    ~FolderLock() { Release(); }
    FolderLock(const FolderLock&) = delete;
    FolderLock& operator=(const FolderLock&) = delete;

    bool IsHeld() const { return isHeld_; }
    void Release();

  private:
    int descriptor_ = -1;
    bool isHeld_ = false;
};

}  // namespace orvex
