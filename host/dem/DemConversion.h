#pragma once
// Elevation rasters become LAS files: one point for each pixel that holds a height.
#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "support/ProgressIf.h"

namespace orvex {

/// How a raster is converted.
struct DemConversionOptions {
    int versionMinor = 4;  ///< LAS 1.x, 0 to 4
    int pointFormat = 0;   ///< 0 to 8, one that the version allows
    /// 1 keeps every pixel, n one of n: spread evenly over rows and columns.
    unsigned thinning = 1;
    bool ignoreCrs = false;     ///< the LAS file then says no CRS
    std::wstring outputFolder;  ///< without a token; made when it is missing
};

/// The minor LAS version of a record's `demLasVersion` (0, 1, 3, 4, 5 give 0 to 4); 4 for any other.
int MinorVersionOfItem(std::int32_t demLasVersion);

/// A LAS file that was written.
struct DemConversionResult {
    std::wstring lasPath;  ///< full path
    std::uint64_t points = 0;
    // X, Y, Z as the header says them.
    std::array<double, 3> min{};
    std::array<double, 3> max{};
    std::string wkt;  ///< the CRS that the file says, UTF-8; empty for none
    /// What the user should know although the file is complete, sentences in plain words: a CRS that the
    /// version cannot say, for instance.
    std::vector<std::wstring> warnings;
};

/// Converts the first band of a raster to "<name>.las" in the output folder, or to the next free
/// "<name> (2).las": no file is replaced, and nothing is written beside the raster. Streams: the memory
/// needed does not grow with the raster. Progress is told in pixels, without a text;
/// it is asked whether to stop at least once a block. None when it said so; nothing is left then, nor after a
/// failure. Throws LDataError in plain words, naming the file and the cause. Needs GDAL set up (SetUpGdal).
/// Safe from any thread, also for rasters of one name into one folder at the same time.
std::optional<DemConversionResult> ConvertDem(const std::wstring& demPath,
                                              const DemConversionOptions& options, Kst::ProgressIf& progress);

}  // namespace orvex
