#pragma once
// The folder of an account: listings in JSON, and the files that they name.
#include <cstddef>
#include <cstdint>
#include <functional>
#include <list>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "support/Files.h"

namespace orvex {

/// Part of a listing that is answered at once.
struct PageRequest {
    std::size_t first = 0;  ///< index in the whole listing
    std::size_t limit = 1000;
    std::wstring filter;  ///< part of the name, any case; empty: all
};

/// Thread-safe. Listings are parsed once and read again when their file has changed.
class AccountFolder {
  public:
    /// Makes the URL of a file from its path below the folder ("files/a.las").
    using SignFile = std::function<std::string(const std::string& file)>;

    explicit AccountFolder(const std::wstring& folder);

    /// Page of the projects as JSON text; nullopt if there is no listing. Throws std::exception if it cannot
    /// be read.
    std::optional<std::string> Projects(const PageRequest& page);
    /// Page of a project's layers. Their relative URLs are signed, or empty if they name nothing below
    /// files/.
    std::optional<std::string> Layers(const std::string& projectId, const PageRequest& page,
                                      const SignFile& sign);

    /// Full path of the regular file that a percent-encoded path below the folder names; empty if there is
    /// none, or if links lead out of the folder.
    std::wstring Find(std::string_view encodedPath) const;

  private:
    struct Entry;
    struct Listing;
    using ListingPointer = std::shared_ptr<const Listing>;

    ListingPointer Load(const std::wstring& file, const char* array);
    static std::string Page(const Listing& listing, const char* array, const PageRequest& page,
                            const SignFile& sign);

    std::wstring folder_;
    std::mutex mutex_;
    std::list<ListingPointer> listings_;  ///< a few, the one used last in front
};

}  // namespace orvex
