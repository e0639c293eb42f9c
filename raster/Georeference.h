#pragma once
#include <gdal.h>

#include <string>

#include "orvexcommon/RasterProperties.h"

namespace orvex {

struct GeoKeyFacts;

/// Fills the georeference: transform, pixel size, extent, control points, RPC, and the CRS with its code and
/// unit. An unusable transform is left out, with a warning. `known`: of the file's GeoKeys; null if nothing
/// is.
void ReadGeoreference(GDALDatasetH dataset, const GeoKeyFacts* known, RasterProperties& properties);

/// Linear unit as raster lists show it: "Meters" for any unit with "met" in its name, the library's word for
/// an unknown unit (text::kUnknown), else `reported` itself.
std::wstring RasterUnitText(const std::wstring& reported);

}  // namespace orvex
