#pragma once
#include <ogr_spatialref.h>

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace orvex {

/// Metres per unit of length, named as in rasters ("m", "metre", "US survey foot", "ft" ...),
/// case-insensitive; nullopt for an empty or unknown name.
std::optional<double> MetresIn(std::string_view unitName);

/// Unit of heights in a CRS: that of its vertical CRS, else its linear unit; metres for degrees.
struct HeightUnit {
    double metres = 1;
    std::string name;
};
HeightUnit HeightUnitOf(const OGRSpatialReference& crs);

/// Bytes of the values of a tag in the first directory of a little-endian TIFF file in memory; nullopt when
/// the file has no such tag or the values lie outside of it. Supports only the types of GeoTIFF keys: ASCII,
/// SHORT and DOUBLE.
std::optional<std::string> FindTiffTag(std::span<const std::byte> tiff, std::uint16_t tag);

/// Variable length records that state a CRS.
struct DemCrsRecords {
    std::vector<std::string> records;    ///< complete, with their headers
    bool isWkt = false;                  ///< the header's WKT bit
    std::string wkt;                     ///< as read from the records, UTF-8; empty for none
    std::vector<std::wstring> warnings;  ///< reason for missing records
};

/// Makes the records for the CRS of a raster: WKT for formats 6 and up, which allow nothing else, and in LAS
/// 1.4 for a CRS that GeoTIFF keys cannot express; otherwise GeoTIFF keys. A CRS that cannot be expressed
/// completely is left out. `demPath` is for the warnings.
DemCrsRecords MakeCrsRecords(const OGRSpatialReference& crs, int minorVersion, int pointFormat,
                             const std::wstring& demPath);

}  // namespace orvex
