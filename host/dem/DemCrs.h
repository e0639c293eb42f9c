#pragma once
#include <ogr_spatialref.h>

#include <string>
#include <vector>

namespace orvex {

/// How a LAS file says its CRS.
struct DemCrsRecords {
    std::vector<std::string> records;    ///< whole variable length records
    bool isWkt = false;                  ///< the header's WKT bit
    std::string wkt;                     ///< what the records say, UTF-8; empty for none
    std::vector<std::wstring> warnings;  ///< why there are none although there is a CRS
};

/// The records for the CRS of a raster: WKT for formats from 6 on, which know nothing else, and for those
/// older ones of LAS 1.4 whose CRS GeoTIFF keys cannot say; else GeoTIFF keys. A CRS that cannot be said
/// whole is not said at all. `demPath` is for the warnings.
DemCrsRecords MakeCrsRecords(const OGRSpatialReference& crs, int minorVersion, int pointFormat,
                             const std::wstring& demPath);

}  // namespace orvex
