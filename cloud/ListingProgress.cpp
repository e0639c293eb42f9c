#include "cloud/ListingProgress.h"

#include "support/LDataError.h"
#include "support/Text.h"

namespace orvex {
namespace {

constexpr std::size_t kMostEntries = 1'000'000;
constexpr std::size_t kMostBytes = std::size_t{512} << 20U;
constexpr int kMostEmptyPages = 100;
constexpr std::size_t kLongestPageName = 4096;  // that is kept, and sent with the request

}  // namespace

void ListingProgress::Advance(const std::string& next, std::size_t bytes) {
    ids_.insert(pageIds_.begin(), pageIds_.end());
    pageIds_.clear();
    bytes_ += bytes + next.size();
    emptyPages_ = entries_ == entriesBefore_ ? emptyPages_ + 1 : 0;
    entriesBefore_ = entries_;
    if (next.size() > kLongestPageName) {
        isComplete_ = true;
        throw LDataError(Text(text::kCloudListingTooLong));
    }
    next_ = next;
    isComplete_ = next.empty();
    if (!isComplete_ && !pages_.insert(next).second) {
        next_.clear();
        pages_.clear();
        throw LDataError(Text(text::kCloudListingRepeats));
    }
    const bool isTooLong = entries_ >= kMostEntries || bytes_ > kMostBytes || emptyPages_ >= kMostEmptyPages;
    if (!isComplete_ && isTooLong) {
        isComplete_ = true;
        throw LDataError(Text(text::kCloudListingTooLong));
    }
}

bool ListingProgress::IsNew(const std::string& id) {
    if (ids_.contains(id)) {
        return false;
    }
    if (!id.empty()) {
        pageIds_.push_back(id);
    }
    ++entries_;
    return true;
}

}  // namespace orvex
