#pragma once
// Properties of a raster file that are known without reading its pixels.
#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "orvexcommon/Shared.h"

namespace orvex {

/// One band of a raster file.
struct RasterBandProperties {
    std::wstring dataType;        ///< GDAL's name: "Byte", "UInt16", "Float32", "CFloat64", ...
    std::int32_t bits = 0;        ///< bits per pixel as stored; fewer than those of the type for 1-bit images
    std::int32_t blockWidth = 0;  ///< pixels; blocks are the unit of reading
    std::int32_t blockHeight = 0;      ///< pixels
    std::wstring colorInterpretation;  ///< GDAL's name: "Red", "Gray", "Palette", "Undefined", ...
    std::optional<double> nodata;      ///< no-data value as stated in the file, may be NaN; nullopt if none
    /// As stated in the file or its sidecar, never computed from pixels; nullopt if not stated.
    std::optional<double> minimum;
    std::optional<double> maximum;
    std::int32_t overviews = 0;  ///< reduced-resolution levels, inside the file or beside it
    std::wstring description;
    std::wstring unit;  ///< of the values, as the file names it; empty when not stated
    double scale = 1;   ///< value = stored value * scale + offset
    double offset = 0;

    bool operator==(const RasterBandProperties&) const = default;
};

/// Maximum number of bands described one by one; `bands` counts all.
inline constexpr std::size_t kMostBandsDescribed = 256;

/// Properties that every raster-information object provides. Texts from the file are kept unchanged.
struct RasterEssentials {
    std::int32_t width = 0;   ///< pixels, at least 1
    std::int32_t height = 0;  ///< pixels, at least 1
    double pixelWidth = 0;    ///< ground units per pixel along a row, not negative; 0 without georeference
    double pixelHeight = 0;   ///< the same along a column
    std::wstring linearUnit;  ///< English name as in the CRS; empty without a CRS
    Shared<std::string> wkt;  ///< UTF-8; empty without a CRS
    std::int32_t projectionCode = 0;  ///< EPSG code; 32767 for a user-defined CRS, 0 for none
    std::int32_t colorModel = -1;     ///< 0 black and white, 1 grayscale, 2 colour, else unknown
    /// 0 white is zero, 1 black is zero, 2 RGB, 3 palette, 4 transparency mask, -1 unknown.
    std::int32_t rasterKind = -1;
    std::int32_t bands = 0;
    std::int32_t bitsPerBand = 0;                 ///< of the first band
    std::int32_t overviews = 0;                   ///< of the first band
    std::optional<std::array<double, 4>> extent;  ///< minX, minY, maxX, maxY in units of the CRS

    bool operator==(const RasterEssentials&) const = default;
};

/// Properties of one raster file: the essential ones, and those that an object may provide in addition.
struct RasterProperties : RasterEssentials {
    bool hasDetails = false;   ///< true if the members below are filled in
    std::wstring driver;       ///< GDAL's short name: "GTiff"
    std::wstring format;       ///< GDAL's long name: "GeoTIFF"
    std::wstring compression;  ///< as named in the file: "DEFLATE"; empty if none or not stated
    std::wstring interleave;   ///< "PIXEL", "BAND", "LINE"; empty when not stated
    std::wstring pixelIs;      ///< "Area" or "Point"; empty when not stated
    std::wstring acquired;     ///< date and time as stated in the file; empty if not stated
    /// X = t[0] + column * t[1] + row * t[2], Y = t[3] + column * t[4] + row * t[5]; none without
    /// georeference.
    std::optional<std::array<double, 6>> transform;
    std::int32_t controlPoints = 0;  ///< ground control points
    bool hasRpc = false;             ///< rational polynomial coefficients
    /// At most kMostBandsDescribed, in the order of the file.
    Shared<std::vector<RasterBandProperties>> bandDetails;
    std::vector<std::wstring> sidecars;  ///< full paths of the associated files
    std::uint64_t totalBytes = 0;        ///< of the file and its sidecars; 0 when unknown
    std::vector<std::wstring> warnings;  ///< messages of the reader while opening, without duplicates

    bool operator==(const RasterProperties&) const = default;
};

}  // namespace orvex
