#pragma once
#include <functional>
#include <list>
#include <mutex>
#include <string>
#include <string_view>
#include <unordered_map>

#include "crs/CrsDescription.h"

namespace orvex {

/// Least-recently-used cache of descriptions by WKT. However many threads ask, a WKT is described once while
/// it is kept. Safe from any thread.
class CrsCache {
  public:
    using Describe = std::function<CrsPtr(const std::string& wkt)>;

    /// Keeps up to `capacity` descriptions. `describe` never runs on two threads at once.
    CrsCache(std::size_t capacity, Describe describe) : capacity_(capacity), describe_(std::move(describe)) {}

    /// Never null. Throws what `describe` throws; the WKT is then described again the next time.
    CrsPtr Get(const std::string& wkt);

  private:
    CrsPtr Find(const std::string& wkt);
    void Insert(CrsPtr description);

    const std::size_t capacity_;
    const Describe describe_;
    std::mutex describing_;
    std::mutex lock_;           ///< guards what follows; never held while describing
    std::list<CrsPtr> latest_;  ///< most recently used first
    /// The keys are views of the descriptions' own texts, so that each WKT is stored once.
    std::unordered_map<std::string_view, std::list<CrsPtr>::iterator> places_;
};

}  // namespace orvex
