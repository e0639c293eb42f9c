#pragma once
#include <cstddef>
#include <functional>
#include <span>
#include <string>

#include "host/utilities/FeatureTally.h"

namespace orvex {

/// Reads the next bytes of a file into the buffer; returns their number, 0 at the end. Throws LDataError.
using KmlBytes = std::function<std::size_t(std::span<char> buffer)>;

/// Counts the features of a KML document while it is read: placemarks and ground overlays, by the document or
/// folder that holds them. `fallbackName` (UTF-8) names the layer of those that a named one does not hold.
/// Throws LDataError, also for a document that would take much memory or time and hold little.
FeatureInfo ParseKml(const KmlBytes& source, const std::string& fallbackName);

}  // namespace orvex
