#pragma once
#include <string>

namespace orvex {

/// The name of a CRS's linear unit as raster lists show it: "Meters" whatever kind of metre it names, the
/// library's word for an unknown unit (13489), else the name as it was reported.
std::wstring RasterUnitText(const std::wstring& reported);

}  // namespace orvex
