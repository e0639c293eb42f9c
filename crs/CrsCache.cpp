#include "crs/CrsCache.h"

namespace orvex {

CrsPtr CrsCache::Get(const std::string& wkt) {
    if (CrsPtr known = Find(wkt)) {
        return known;
    }
    const std::lock_guard describing(describing_);
    // Another thread may have described it while this one waited.
    if (CrsPtr known = Find(wkt)) {
        return known;
    }
    CrsPtr description = describe_(wkt);
    Insert(description);
    return description;
}

CrsPtr CrsCache::Find(const std::string& wkt) {
    const std::lock_guard guard(lock_);
    const auto place = places_.find(wkt);
    if (place == places_.end()) {
        return nullptr;
    }
    latest_.splice(latest_.begin(), latest_, place->second);
    return latest_.front();
}

void CrsCache::Insert(CrsPtr description) {
    const std::lock_guard guard(lock_);
    latest_.push_front(std::move(description));
    places_.emplace(latest_.front()->sourceWkt, latest_.begin());
    if (latest_.size() > capacity_) {
        places_.erase(latest_.back()->sourceWkt);
        latest_.pop_back();
    }
}

}  // namespace orvex
