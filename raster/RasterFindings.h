#pragma once
#include <string>
#include <vector>

#include "crs/CrsDescription.h"
#include "orvexcommon/RasterProperties.h"
#include "support/Finding.h"

namespace orvex {

/// What a raster is listed for; it decides what is odd about it.
enum class RasterUse { Image, Dem };

/// Findings about a raster that could be read, worst first; what the libraries said while opening it comes
/// before what follows from its properties.
std::vector<Finding> ValidateRaster(const RasterProperties& properties, const CrsDescription& crs,
                                    RasterUse use);

/// GDAL's messages as sentences for the user, without names of files and functions, and without duplicates.
/// Messages meant for programmers are left out.
std::vector<std::wstring> PlainMessages(const std::vector<std::string>& messages);

/// Cause of a failure in plain words from the messages of the failed call; empty if they state none.
std::wstring PlainReason(const std::vector<std::string>& messages);

}  // namespace orvex
