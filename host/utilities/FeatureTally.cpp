#include "host/utilities/FeatureTally.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include "support/Format.h"
#include "support/LDataError.h"
#include "support/Text.h"

namespace orvex {

void FeatureTally::Count(std::string_view layer) {
    auto counted = layers_.find(layer);
    if (counted == layers_.end()) {
        if (layers_.size() == kMostLayers) {
            throw LDataError(FormatText(Text(text::kFeatureTooManyLayers), {kMostLayers}));
        }
        counted = layers_.emplace(layer, 0).first;
    }
    counted->second += counted->second < std::numeric_limits<std::uint32_t>::max() ? 1 : 0;
    ++features_;
}

void FeatureTally::Extend(double x, double y) {
    if (!std::isfinite(x) || !std::isfinite(y)) {
        return;
    }
    if (extent_.minX > extent_.maxX) {
        extent_ = {x, y, x, y};
        return;
    }
    extent_ = {std::min(extent_.minX, x), std::min(extent_.minY, y), std::max(extent_.maxX, x),
               std::max(extent_.maxY, y)};
}

OrvexLayerMap FeatureTally::Layers() const {
    OrvexLayerMap layers;
    for (const auto& [name, count] : layers_) {
        layers[WithoutControls(FromUtf8(ValidUtf8(name)))] += count;
    }
    return layers;
}

}  // namespace orvex
