#pragma once
#include <cstddef>
#include <string>
#include <unordered_set>
#include <vector>

namespace orvex {

/// How far a list has been read that comes page by page, from a service that may change it meanwhile, or may
/// never end it.
class ListingProgress {
  public:
    /// The page to read next; empty: the first.
    const std::string& Next() const { return next_; }
    /// True once there is nothing more to read.
    bool IsComplete() const { return isComplete_; }

    /// Takes a page's name for the one that follows, and its size in bytes. Throws LDataError if that one has
    /// been read already (reading can begin anew then), or the list has become too long (it is complete
    /// then).
    void Advance(const std::string& next, std::size_t bytes);
    /// False for the identifier of an entry of an earlier page: the list has changed since. Entries of one
    /// page, and those without an identifier, count as different.
    bool IsNew(const std::string& id);

  private:
    std::string next_;
    std::unordered_set<std::string> pages_;  ///< that have been named
    std::unordered_set<std::string> ids_;    ///< of the pages before this one
    std::vector<std::string> pageIds_;
    std::size_t bytes_ = 0;
    std::size_t entries_ = 0;
    std::size_t entriesBefore_ = 0;  ///< the last page
    int emptyPages_ = 0;             ///< in a row
    bool isComplete_ = false;
};

}  // namespace orvex
