#pragma once
#include <string>

#include "crs/CrsDescription.h"

namespace orvex {

class LASFile;

enum class LasCrsSource { None, Wkt, GeoKeys };

/// CRS from the projection records of a file.
struct LasCrs {
    CrsPtr crs;                                ///< null if there is no CRS or none that can be read
    LasCrsSource source = LasCrsSource::None;  ///< of `crs`
    std::wstring problem;  ///< why records cannot be read, in a sentence; empty if none had to be passed over
    std::string unreadableWkt;  ///< text of a WKT record that cannot be read
};

/// Reads the CRS of a file: from the WKT record if the header's WKT bit is set or there are no GeoKeys, else
/// from the GeoKeys; if that gives none, from the other. Sets up GDAL. Safe from any thread; equal records
/// are converted once.
LasCrs ReadLasCrs(const LASFile& file);

}  // namespace orvex
