#pragma once
#include <cstddef>
#include <memory>
#include <string>

namespace orvex {

/// A coordinate reference system as files, rows and panes show it.
struct CrsDescription {
    std::string sourceWkt;  ///< as read from the file, UTF-8; empty when the file has none
    std::wstring name;      ///< empty when there is no CRS or it cannot be read
    bool isGeographic = false;
    std::wstring linearUnits;   ///< name of the linear unit; "Unknown" when not stated, empty without a CRS
    std::wstring angularUnits;  ///< the same for the angular unit
    std::wstring prettyWkt;     ///< multi-line, lines end in "\r\n"
    long epsg = 0;              ///< EPSG code of the CRS or of its horizontal part; 0 for none
    std::wstring verticalName;  ///< name of the vertical part; empty for none
    std::string compatibilityGroup;  ///< OrvexUtilities::GetCompatibilityGroup of the WKT
};

using CrsPtr = std::shared_ptr<const CrsDescription>;

/// Describes a WKT; the few hundred used last are cached. Never null, never throws. GDAL's errors do not
/// reach the console. Safe from any thread.
CrsPtr DescribeCrs(const std::string& wkt);

/// Returns the CRS of KML and KMZ files: WGS 84 with EGM96 heights.
CrsPtr DescribeDefaultCrs();

}  // namespace orvex
