#include "crs/ExtentFindings.h"

#include <algorithm>
#include <cmath>

#include "support/Format.h"
#include "support/Text.h"

namespace orvex {
namespace {

// Half the equator is 2e7 metres or 6.6e7 feet long, and an easting with the number of its zone in front
// stays below 6.5e7 metres; no height comes near these.
constexpr double kMostUnits = 1e8;

StringId TextOf(Misplacement cause) {
    switch (cause) {
        case Misplacement::Degrees:
            return text::kExtentInDegrees;
        case Misplacement::NotDegrees:
            return text::kExtentNotInDegrees;
        case Misplacement::AxesSwapped:
            return text::kExtentAxesSwapped;
        case Misplacement::Feet:
            return text::kExtentInFeet;
        case Misplacement::Metres:
            return text::kExtentInMetres;
        case Misplacement::OtherZone:
            return text::kExtentOfOtherZone;
        default:
            return {};
    }
}

bool IsBeyond(double edge, double most) {
    return std::isfinite(edge) && std::abs(edge) > most;
}

bool IsBeyondDegrees(const GroundBox& extent) {
    return IsBeyond(extent[0], kMostLongitude) || IsBeyond(extent[1], kMostLatitude) ||
           IsBeyond(extent[2], kMostLongitude) || IsBeyond(extent[3], kMostLatitude);
}

bool IsPlace(const GroundBox& extent) {
    const auto isFinite = [](double edge) { return std::isfinite(edge); };
    return std::ranges::all_of(extent, isFinite) && extent[0] <= extent[2] && extent[1] <= extent[3] &&
           std::ranges::any_of(extent, [](double edge) { return edge != 0; });
}

Misplacement CauseOf(const CrsDescription& crs, const GroundBox& extent) {
    const Misplacement cause =
        crs.area && IsPlace(extent) ? FindMisplacement(*crs.area, extent) : Misplacement::None;
    if (cause != Misplacement::None || !crs.isGeographic || !IsBeyondDegrees(extent)) {
        return cause;
    }
    return IsBeyondDegrees({extent[1], extent[0], extent[3], extent[2]}) ? Misplacement::NotDegrees
                                                                         : Misplacement::AxesSwapped;
}

}  // namespace

std::optional<Finding> CheckExtent(const CrsDescription& crs, std::span<const double> low,
                                   std::span<const double> high) {
    const Misplacement cause = CauseOf(crs, {low[0], low[1], high[0], high[1]});
    if (cause != Misplacement::None) {
        return MakeFinding(extent_finding::kOutsideCrs, {Text(TextOf(cause))});
    }
    const std::wstring axes = AxesWhere(low.size(), [&](std::size_t axis) {
        return IsBeyond(low[axis], kMostUnits) || IsBeyond(high[axis], kMostUnits);
    });
    return axes.empty() ? std::nullopt : std::optional(MakeFinding(extent_finding::kImpossible, {axes}));
}

}  // namespace orvex
