#pragma once
#include <string>

namespace orvex {

class LASFile;

/// The CRS of a file as WKT (UTF-8); empty when it has none or none that can be read. The WKT record holds it
/// when the header's WKT bit is set or there are no GeoKeys, else the GeoKeys do; where the one that should
/// hold it says nothing, the other is asked. Safe from any thread; equal GeoKeys are converted once.
std::string LasWkt(const LASFile& file);

}  // namespace orvex
