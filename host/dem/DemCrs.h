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

/// Metres in a unit of length as rasters name it ("m", "metre", "US survey foot", "ft" ...),
/// case-insensitive; nullopt for an empty or unknown name.
std::optional<double> MetresIn(std::string_view unitName);

/// Unit of heights in a CRS: that of its vertical part, else of its plane; metres for degrees.
struct HeightUnit {
    double metres = 1;
    std::string name;
};
HeightUnit HeightUnitOf(const OGRSpatialReference& crs);

/// Bytes of the values of a tag in the first directory of a little-endian TIFF file in memory; nullopt when
/// the file has no such tag or the values lie outside of it. Only the types of GeoTIFF keys are known (ASCII,
/// SHORT, DOUBLE).
std::optional<std::string> FindTiffTag(std::span<const std::byte> tiff, std::uint16_t tag);

/// Variable length records that state a CRS.
struct DemCrsRecords {
    std::vector<std::string> records;    ///< whole variable length records
    bool isWkt = false;                  ///< the header's WKT bit
    std::string wkt;                     ///< as read from the records, UTF-8; empty for none
    std::vector<std::wstring> warnings;  ///< why there are none although there is a CRS
};

/// The records for the CRS of a raster: WKT for formats from 6 on, which know nothing else, and for those
/// older ones of LAS 1.4 whose CRS GeoTIFF keys cannot say; else GeoTIFF keys. A CRS that cannot be said
/// whole is not said at all. `demPath` is for the warnings.
DemCrsRecords MakeCrsRecords(const OGRSpatialReference& crs, int minorVersion, int pointFormat,
                             const std::wstring& demPath);

}  // namespace orvex
