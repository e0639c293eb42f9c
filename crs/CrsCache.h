#pragma once
#include <functional>
#include <list>
#include <mutex>
#include <string>
#include <string_view>
#include <unordered_map>

#include "crs/CrsDescription.h"

namespace orvex {

/// Descriptions by their WKT, the latest used ones; a text is described once while it is kept, however many
/// threads ask. Safe from any thread.
class CrsCache {
  public:
    using Describe = std::function<CrsPtr(const std::string& wkt)>;

    /// Keeps up to `capacity` descriptions; `describe` makes one that is missing and is never run by two
    /// threads at once.
    CrsCache(std::size_t capacity, Describe describe) : capacity_(capacity), describe_(std::move(describe)) {}

    CrsPtr Get(const std::string& wkt);

  private:
    CrsPtr Find(const std::string& wkt);
    void Insert(CrsPtr description);

    const std::size_t capacity_;
    const Describe describe_;
    std::mutex describing_;
    std::mutex lock_;           ///< guards what follows; never held while describing
    std::list<CrsPtr> latest_;  ///< the one used last comes first
    /// Views of the descriptions' own texts, so that a WKT is kept once.
    std::unordered_map<std::string_view, std::list<CrsPtr>::iterator> places_;
};

}  // namespace orvex
