#pragma once
#include <chrono>
#include <filesystem>
#include <memory>

namespace orvex {

/// A lock that one process at a time has on a folder; it leaves no file there. Given back when destroyed, by
/// the thread that made it, or when its process ends in whatever way.
class FolderLock {
  public:
    /// Waits for the lock until the given time. Where there can be no such lock it counts as held; on a
    /// folder that is not there it is not.
    FolderLock(const std::filesystem::path& folder, std::chrono::steady_clock::time_point until);
    ~FolderLock();
    FolderLock(const FolderLock&) = delete;
    FolderLock& operator=(const FolderLock&) = delete;

    bool IsHeld() const { return isHeld_; }
    void Release();

  private:
    struct System;

    std::unique_ptr<System> system_;  ///< null when released
    bool isHeld_ = false;
};

}  // namespace orvex
