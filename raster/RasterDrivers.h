#pragma once
#include <string>

#include "crs/GdalRaii.h"

namespace orvex {

/// Short names of the registered drivers that may open a listed file. Safe from any thread.
GdalListPtr RasterDrivers();

/// Explanation for a file that no driver recognises but whose extension is of a format that this build of
/// GDAL cannot read; empty in any other case.
std::wstring MissingDriverReason(const std::wstring& path);

}  // namespace orvex
