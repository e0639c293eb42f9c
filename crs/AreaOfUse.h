#pragma once
#include <array>
#include <optional>

class OGRSpatialReference;

namespace orvex {

/// Largest numbers of a geographic CRS, to either side of zero: in grads, the largest of the units.
/// Longitudes may count from 0.
inline constexpr double kMostLongitude = 400;
inline constexpr double kMostLatitude = 100;

/// West, south, east, north.
using GroundBox = std::array<double, 4>;

/// Area that a CRS is made for, as the EPSG database or the CRS itself states it.
struct AreaOfUse {
    GroundBox degrees;  ///< longitudes and latitudes from Greenwich; east may exceed 180
    GroundBox ground;   ///< its bounds in the CRS, eastings before northings whatever the order of the axes
    double metresPerUnit;  ///< of a projected CRS; 0 for a geographic one
};

/// Area of use of a projected or geographic CRS, or of the horizontal part of a compound one. `epsg`: its
/// code, which states the area where the CRS does not; 0 if unknown. nullopt if there is none. Needs no grids
/// and no network: the bounds are projected from the CRS's own datum. Call it inside a GdalErrorScope.
std::optional<AreaOfUse> FindAreaOfUse(const OGRSpatialReference& crs, long epsg);

/// Likely cause of an extent that lies outside the area of use of its CRS.
enum class Misplacement {
    None,  ///< it lies inside, or near enough
    Unexplained,
    Degrees,      ///< degrees in a projected CRS
    NotDegrees,   ///< numbers in a geographic CRS that cannot be degrees
    AxesSwapped,  ///< northings before eastings
    Feet,         ///< in a CRS of metres
    Metres,       ///< in a CRS of feet
    OtherZone,    ///< off by millions of metres in X: of another zone, or with the zone's number in front
};

/// Compares an extent (X before Y, finite, not inverted) with an area of use. Countries use their main zone
/// far to the east and west of it, so only an extent that misses the area by its width, or by half its
/// height, counts as outside.
Misplacement FindMisplacement(const AreaOfUse& area, const GroundBox& extent);

}  // namespace orvex
