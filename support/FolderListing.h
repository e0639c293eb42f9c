#pragma once
#include <chrono>
#include <cstddef>
#include <list>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

#include "support/Files.h"
#include "support/GdalRaii.h"

namespace orvex {

/// Cached listings of folders, so that opening all rasters of a folder lists it once. A folder that has
/// changed is listed again. Safe from any thread.
class FolderListing {
  public:
    static constexpr std::chrono::milliseconds kStep{
        50};  ///< longer than one tick of any kernel's file times

    /// Keeps the listings of the `folders` used last. A listing made within `settling` of the folder's last
    /// change (three seconds where times are whole seconds) is not kept, because another change might leave
    /// the folder's time as it is.
    explicit FolderListing(std::size_t folders, std::chrono::milliseconds settling = kStep)
        : capacity_(folders), settling_(settling) {}

    /// Names (UTF-8) of the files beside `path`, itself included. In a folder of more than kMostWhole files
    /// only those that may belong to it, however many. Null if the folder cannot be listed or holds more than
    /// kMostListed files.
    GdalListPtr Beside(const std::wstring& path);

    /// True if another change of a folder last changed at `modified` would give it a different time.
    static bool HasSettled(FileTime modified, FileTime now, std::chrono::milliseconds settling = kStep);

    static constexpr std::size_t kMostWhole = 64;
    static constexpr std::size_t kMostListed = 200'000;

  private:
    struct Folder {
        std::wstring path;
        FileTime modified;
        std::vector<std::wstring> names;  ///< sorted by their upper-cased forms
        std::vector<std::wstring> keys;   ///< these forms; empty for a small folder
        GdalListPtr whole;                ///< all names of a small folder; null for a large one
    };
    using FolderPtr = std::shared_ptr<const Folder>;

    FolderPtr Get(const std::wstring& folder);
    static FolderPtr List(const std::wstring& folder, FileTime modified);

    const std::size_t capacity_;
    const std::chrono::milliseconds settling_;
    std::mutex lock_;
    std::list<FolderPtr> latest_;  ///< most recently used first
};

}  // namespace orvex
