#pragma once
#include <cstddef>
#include <memory>
#include <string>

namespace orvex {

/// What is shown of a file's coordinate reference system.
struct CrsDescription {
    std::string sourceWkt;  ///< as read from the file, UTF-8; empty when the file carries none
    std::wstring name;      ///< empty when there is no CRS or it cannot be read
    bool isGeographic = false;
    std::wstring linearUnits;   ///< name of the unit, "Unknown" when the CRS says none; empty without a CRS
    std::wstring angularUnits;  ///< the same for angles
    std::wstring prettyWkt;     ///< multi-line, lines end in "\r\n"
    long epsg = 0;              ///< code of the CRS or of its horizontal part; 0 for none
    std::wstring verticalName;  ///< name of the vertical part; empty for none
    std::string compatibilityGroup;  ///< OrvexUtilities::GetCompatibilityGroup of the WKT
};

using CrsPtr = std::shared_ptr<const CrsDescription>;

/// Describes a WKT, once per process for identical texts (the latest few hundred are kept). Never null, never
/// throws; safe from any thread. Errors of GDAL do not reach the console.
CrsPtr DescribeCrs(const std::string& wkt);

/// The CRS of KML and KMZ files: WGS 84 with EGM96 heights.
CrsPtr DescribeDefaultCrs();

}  // namespace orvex
