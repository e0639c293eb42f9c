#include "crs/AreaOfUse.h"

#include <ogr_spatialref.h>

#include <algorithm>
#include <cmath>
#include <memory>
#include <numbers>

namespace orvex {
namespace {

constexpr double kFullCircle = 360;
constexpr double kZoneStep = 1e6;  // metres between the false eastings of numbered zones

bool ReadDegrees(const OGRSpatialReference& crs, GroundBox& box) {
    const char* name = nullptr;
    return crs.GetAreaOfUse(&box[0], &box[1], &box[2], &box[3], &name);
}

std::optional<GroundBox> DegreesOf(const OGRSpatialReference& crs, long epsg) {
    GroundBox box{};
    OGRSpatialReference known;
    const bool isStated =
        ReadDegrees(crs, box) ||
        (epsg > 0 && known.importFromEPSG(static_cast<int>(epsg)) == OGRERR_NONE && ReadDegrees(known, box));
    if (!isStated || box[0] < -180) {  // -1000: unknown
        return std::nullopt;
    }
    box[2] += box[2] < box[0] ? kFullCircle : 0;  // across the 180th meridian
    return box;
}

/// Degrees from Greenwich in the unit and from the prime meridian of a geographic CRS.
GroundBox InUnitsOf(const OGRSpatialReference& geographic, GroundBox box) {
    const double unit = geographic.GetAngularUnits(nullptr) * 180 / std::numbers::pi;
    const double meridian = geographic.GetPrimeMeridian(nullptr) * unit;
    for (const std::size_t longitude : {0U, 2U}) {
        box[longitude] -= meridian;
    }
    std::ranges::for_each(box, [&](double& number) { number /= unit; });
    return box;
}

std::optional<GroundBox> Projected(OGRSpatialReference& geographic, OGRSpatialReference& projected,
                                   const GroundBox& from) {
    geographic.SetAxisMappingStrategy(OAMS_TRADITIONAL_GIS_ORDER);
    projected.SetAxisMappingStrategy(OAMS_TRADITIONAL_GIS_ORDER);
    const std::unique_ptr<OGRCoordinateTransformation> projection(
        OGRCreateCoordinateTransformation(&geographic, &projected));
    constexpr int kPointsPerSide = 21;
    GroundBox to{};
    const bool isDone =
        projection != nullptr && projection->TransformBounds(from[0], from[1], from[2], from[3], &to[0],
                                                             &to[1], &to[2], &to[3], kPointsPerSide) != 0;
    const bool isFinite = std::ranges::all_of(to, [](double number) { return std::isfinite(number); });
    return isDone && isFinite ? std::optional(to) : std::nullopt;
}

bool Holds(const GroundBox& box, double x, double y) {
    return x >= box[0] && x <= box[2] && y >= box[1] && y <= box[3];
}

bool Overlaps(const GroundBox& a, const GroundBox& b) {
    return a[0] <= b[2] && b[0] <= a[2] && a[1] <= b[3] && b[1] <= a[3];
}

/// Longitudes may count from 0 to 360, and an area may lie across the 180th meridian.
GroundBox Turned(const GroundBox& box, double degrees) {
    return {box[0] + degrees, box[1], box[2] + degrees, box[3]};
}

/// The area with its width at either side and half its height above and below, at least a hundred kilometres.
GroundBox Widened(const AreaOfUse& area) {
    constexpr double kLeastMetres = 100'000;
    constexpr double kLeastDegrees = 1;
    const bool isGeographic = area.metresPerUnit == 0;
    const double least = isGeographic ? kLeastDegrees : kLeastMetres / area.metresPerUnit;
    GroundBox box = area.ground;
    const double x = std::max(least, box[2] - box[0]);
    const double y = std::max(least, (box[3] - box[1]) / 2);
    box = {box[0] - x, box[1] - y, box[2] + x, box[3] + y};
    if (isGeographic) {
        box[1] = std::max(box[1], -kMostLatitude);
        box[3] = std::min(box[3], kMostLatitude);
    }
    return box;
}

/// True if an extent in degrees lies outside an area, but inside it with latitudes before longitudes.
bool IsSwappedInside(const AreaOfUse& area, const GroundBox& extent) {
    return !Overlaps(area.ground, extent) && Holds(area.ground, extent[1], extent[0]) &&
           Holds(area.ground, extent[3], extent[2]);
}

Misplacement CauseInDegrees(const AreaOfUse& area, double x, double y) {
    if (Holds(area.ground, y, x) || Holds(area.ground, y + kFullCircle, x)) {
        return Misplacement::AxesSwapped;
    }
    return std::abs(x) > kMostLongitude || std::abs(y) > kMostLatitude ? Misplacement::NotDegrees
                                                                       : Misplacement::Unexplained;
}

Misplacement CauseOnGround(const AreaOfUse& area, double x, double y) {
    constexpr double kFoot = 0.3048;
    const bool isMetres = std::abs(area.metresPerUnit - 1) < 1e-6;
    const bool isFeet = std::abs(area.metresPerUnit - kFoot) < 1e-5;
    if (Holds(area.degrees, x, y)) {
        return Misplacement::Degrees;
    }
    if (Holds(area.ground, y, x)) {
        return Misplacement::AxesSwapped;
    }
    if (isMetres && Holds(area.ground, x * kFoot, y * kFoot)) {
        return Misplacement::Feet;
    }
    if (isFeet && Holds(area.ground, x / kFoot, y / kFoot)) {
        return Misplacement::Metres;
    }
    const double zones = std::round((x - (area.ground[0] + area.ground[2]) / 2) / kZoneStep);
    const bool isOtherZone = isMetres && zones != 0 && Holds(area.ground, x - zones * kZoneStep, y);
    return isOtherZone ? Misplacement::OtherZone : Misplacement::Unexplained;
}

}  // namespace

std::optional<AreaOfUse> FindAreaOfUse(const OGRSpatialReference& crs, long epsg) {
    OGRSpatialReference horizontal(crs);
    if (horizontal.IsCompound() != 0) {
        horizontal.StripVertical();
    }
    const bool isProjected = horizontal.IsProjected() != 0;
    const std::optional<GroundBox> degrees =
        isProjected || horizontal.IsGeographic() != 0 ? DegreesOf(horizontal, epsg) : std::nullopt;
    const std::unique_ptr<OGRSpatialReference> geographic(degrees ? horizontal.CloneGeogCS() : nullptr);
    if (geographic == nullptr) {
        return std::nullopt;
    }
    const GroundBox local = InUnitsOf(*geographic, *degrees);
    if (!isProjected) {
        return AreaOfUse{*degrees, local, 0};
    }
    const std::optional<GroundBox> ground = Projected(*geographic, horizontal, local);
    return ground ? std::optional(AreaOfUse{*degrees, *ground, horizontal.GetLinearUnits(nullptr)})
                  : std::nullopt;
}

Misplacement FindMisplacement(const AreaOfUse& area, const GroundBox& extent) {
    const double x = (extent[0] + extent[2]) / 2;
    const double y = (extent[1] + extent[3]) / 2;
    const bool isNear = Overlaps(Widened(area), extent);
    if (area.metresPerUnit == 0) {
        // The margin of a large area, such as that of a continent, may well hold the swapped extent.
        if (IsSwappedInside(area, extent)) {
            return Misplacement::AxesSwapped;
        }
        return isNear || Overlaps(Widened(area), Turned(extent, kFullCircle)) ||
                       Overlaps(Widened(area), Turned(extent, -kFullCircle))
                   ? Misplacement::None
                   : CauseInDegrees(area, x, y);
    }
    // Degrees are small numbers, which the margin of an area may well hold.
    const bool isDegrees = Holds(area.degrees, x, y) && !Overlaps(area.ground, extent);
    return isNear && !isDegrees ? Misplacement::None : CauseOnGround(area, x, y);
}

}  // namespace orvex
