#pragma once
#include <cstdint>
#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "orvexcommon/OrvexUtilities.h"

namespace orvex {

/// Features of a file as they are read: their number, extent and layers.
class FeatureTally {
  public:
    static constexpr std::size_t kMostLayers = 100'000;

    /// A feature of a layer (UTF-8). Throws LDataError beyond kMostLayers.
    void Count(std::string_view layer);
    /// A corner of a feature; one that is not finite is skipped.
    void Extend(double x, double y);

    std::uint64_t Features() const { return features_; }
    const tagOrvexExtent& Extent() const { return extent_; }
    /// Names are of valid characters, without controls.
    OrvexLayerMap Layers() const;

  private:
    using LayerCounts = std::map<std::string, std::uint32_t, std::less<>>;

    LayerCounts layers_;
    std::uint64_t features_ = 0;
    tagOrvexExtent extent_{};
};

/// Content of a file as the functions of OrvexUtilities return it.
struct FeatureInfo {
    FeatureTally tally;
    std::vector<std::wstring> leftOut;  ///< sentences
};

}  // namespace orvex
