#pragma once
#include <string>
#include <vector>

#include "support/Finding.h"

namespace orvex {

enum class RasterUse;
struct RasterInspection;

/// Returns all findings of a raster that could be read, worst first; among equals, the warnings of its reader
/// come before those from its properties.
std::vector<Finding> ValidateRaster(const RasterInspection& inspection, RasterUse use);

/// GDAL's messages as sentences for the user, without names of files and functions, and without duplicates.
/// Messages meant for programmers are left out.
std::vector<std::wstring> PlainMessages(const std::vector<std::string>& messages);

/// Cause of a failure in plain words from the messages of the failed call; empty if they state none.
std::wstring PlainReason(const std::vector<std::string>& messages);

}  // namespace orvex
