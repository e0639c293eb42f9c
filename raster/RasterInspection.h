#pragma once
#include <cstdint>
#include <string>
#include <vector>

#include "crs/CrsDescription.h"
#include "orvexcommon/RasterProperties.h"
#include "support/Finding.h"
#include "support/HostObjects.h"

namespace orvex {

/// What a raster is listed for; it decides what is odd about it.
enum class RasterUse { Image, Dem };

/// What a grid row, the details pane and the command line show of one raster file, read without its pixels.
struct RasterInspection {
    std::wstring path;
    bool loadable = false;
    bool threw = false;    ///< an unexpected exception ended the reading; what was known by then is here
    std::wstring summary;  ///< one line: the reason when not loadable, else the worst finding or "OK"
    std::vector<Finding> findings;  ///< everything that is odd about the file, worst first
    RasterProperties properties;    ///< empty when not loadable
    std::wstring unit;              ///< the linear unit as it is shown: "Meters", "Unknown", or as reported
    bool bigTiff = false;
    CrsPtr crs;                   ///< never null
    std::uint64_t fileSize = 0;   ///< bytes; 0 when unknown
    std::int64_t modifiedMs = 0;  ///< milliseconds since 1970-01-01 UTC; 0 when unknown
};

/// Reads one file with the host's raster-information object; where the host has none (or `maker` is empty),
/// and for what the host's object does not say, with the component's own reader. Never throws: a file that
/// cannot be described is told from an exception that nobody expected. Safe from any thread; nothing is
/// written.
RasterInspection InspectRasterFile(const std::wstring& path, RasterUse use,
                                   const RasterInformationMaker& maker = {});

}  // namespace orvex
