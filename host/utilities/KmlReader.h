#pragma once
#include <string>

#include "host/utilities/FeatureTally.h"

namespace orvex {

/// Reads a KML or KMZ file, in one pass. Throws LDataError.
FeatureInfo ReadKml(const std::wstring& path);

}  // namespace orvex
