#pragma once
#include <ogr_spatialref.h>

#include <optional>
#include <string>
#include <string_view>

namespace orvex {

/// Metres in a unit of length as rasters name it ("m", "metre", "US survey foot", "ft" ...), whatever the
/// letter case; none for a name that is empty or not known.
std::optional<double> MetresIn(std::string_view unitName);

/// The unit that a CRS gives heights: that of its vertical part, else of its plane; metres above degrees.
struct HeightUnit {
    double metres = 1;
    std::string name;
};
HeightUnit HeightUnitOf(const OGRSpatialReference& crs);

}  // namespace orvex
