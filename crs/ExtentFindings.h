#pragma once
#include <optional>
#include <span>

#include "crs/CrsDescription.h"
#include "support/Finding.h"

namespace orvex {

namespace extent_finding {
inline constexpr FindingKind kOutsideCrs{"extent-outside-crs", FindingSeverity::Warning,
                                         text::kExtentOutsideCrs};
inline constexpr FindingKind kImpossible{"extent-impossible", FindingSeverity::Warning,
                                         text::kExtentImpossible};
}  // namespace extent_finding

/// Finding about an extent that lies outside the area of use of its CRS, or that no CRS can hold; nullopt if
/// there is nothing to say. `low`, `high`: X and Y, and Z where there are heights, in the CRS's units. Edges
/// that are not finite are not judged; an extent of zeros, or one that is inverted, has no place to judge.
std::optional<Finding> CheckExtent(const CrsDescription& crs, std::span<const double> low,
                                   std::span<const double> high);

/// "X, Z": the axes, of the first `count`, for which a condition holds.
template <typename Holds>
std::wstring AxesWhere(std::size_t count, Holds holds) {
    constexpr const wchar_t* kNames[] = {L"X", L"Y", L"Z"};
    std::wstring axes;
    for (std::size_t axis = 0; axis < count; ++axis) {
        if (holds(axis)) {
            axes.append(axes.empty() ? L"" : L", ").append(kNames[axis]);
        }
    }
    return axes;
}

}  // namespace orvex
