#pragma once
#include <chrono>
#include <cstddef>
#include <list>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

#include "raster/RasterDrivers.h"
#include "support/Files.h"

namespace orvex {

/// The names of the files in folders, listed once for all the files of a folder that are opened one after the
/// other; a folder that has changed since is listed anew. Safe from any thread.
class FolderListing {
  public:
    static constexpr std::chrono::milliseconds kStep{50};  ///< more than any kernel's clock goes at once

    /// Keeps the latest `folders` listings, of folders whose last change is longer ago than `settling` (three
    /// seconds where times are whole seconds): a change right after the listing may leave the folder's time
    /// as it was.
    explicit FolderListing(std::size_t folders, std::chrono::milliseconds settling = kStep)
        : capacity_(folders), settling_(settling) {}

    /// The names (UTF-8) beside a file, its own among them, as GDAL takes them when it opens the file. Of a
    /// folder with more than kMostWhole files those that begin as the file does, which its sidecars do.
    /// Null when the folder cannot be listed or holds more than kMostListed.
    GdalListPtr Beside(const std::wstring& path);

    /// Whether a further change of a folder that was changed at `modified` changes its time.
    static bool HasSettled(FileTime modified, FileTime now, std::chrono::milliseconds settling = kStep);

    static constexpr std::size_t kMostWhole = 64;
    static constexpr std::size_t kMostListed = 200'000;

  private:
    struct Folder {
        std::wstring path;
        FileTime modified;
        std::vector<std::wstring> names;  ///< in the order of their upper-cased forms
        std::vector<std::wstring> keys;   ///< these forms, empty for a folder that is passed whole
        GdalListPtr whole;                ///< null for a folder that is not
    };
    using FolderPtr = std::shared_ptr<const Folder>;

    FolderPtr Get(const std::wstring& folder);
    static FolderPtr List(const std::wstring& folder, FileTime modified);

    const std::size_t capacity_;
    const std::chrono::milliseconds settling_;
    std::mutex lock_;
    std::list<FolderPtr> latest_;  ///< the one used last comes first
};

}  // namespace orvex
