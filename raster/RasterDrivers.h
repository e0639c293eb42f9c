#pragma once
#include <string>

#include "support/GdalRaii.h"

namespace orvex {

/// Short names of the registered drivers that may open a listed file.
struct RasterDriverLists {
    /// Without GIF, which decodes all images of a file when it opens it; BIGGIF does not.
    GdalListPtr describing;
    /// With GIF: to read pixels, BIGGIF needs a temporary file.
    GdalListPtr reading;
};

/// Safe from any thread.
RasterDriverLists RasterDrivers();

/// Explanation for a file that no driver recognises but whose extension is of a format that this build of
/// GDAL cannot read; empty in any other case.
std::wstring MissingDriverReason(const std::wstring& path);

}  // namespace orvex
