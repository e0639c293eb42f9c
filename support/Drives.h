#pragma once
// Telling drives apart by name: a drive that does not answer must not be asked.
#include <chrono>
#include <functional>
#include <string>

namespace orvex {

/// Returns the key of the drive or share that a folder (full path) is on.
using DriveFinder = std::function<std::wstring(const std::wstring& folder)>;

/// Finds drives of Linux by their device in the table of mounts as it is now (/proc/self/mountinfo), without
/// the table by the first folder; those of Windows by letter, volume or share. Follows links on the drive
/// with the root folder and on other local disks of Linux, and looks at nothing else: a folder behind a link
/// on another drive counts as on that one. The function is safe on any thread.
DriveFinder FindDrivesByName();

/// What reading many files asks of the drives that they are on.
struct DriveAccess {
    DriveFinder driveOf = {};  ///< empty: FindDrivesByName, anew for each list
    /// Time that a read may take, and that a drive may hold up the files of others, before others go on.
    std::chrono::nanoseconds patience = std::chrono::seconds(1);
    /// Called before a file is read, on the thread that reads it; empty: nothing.
    std::function<void(const std::wstring& path)> reach = {};
};

}  // namespace orvex
