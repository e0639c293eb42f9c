#pragma once
#include <string>

#include "host/utilities/FeatureTally.h"

namespace orvex {

/// Reads the main document of a KMZ file, "doc.kml" or the first KML file in it, where it lies: nothing is
/// unpacked to disk. Throws LDataError.
FeatureInfo ReadKmz(const std::wstring& path, const std::string& fallbackName);

}  // namespace orvex
