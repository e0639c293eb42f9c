#pragma once
// Conversion of elevation rasters to LAS files: one point per pixel that has a height.
#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "support/ProgressIf.h"

namespace orvex {

/// Options of a conversion.
struct DemConversionOptions {
    int versionMinor = 4;  ///< LAS 1.x, 0 to 4
    int pointFormat = 0;   ///< 0 to 8, as far as the version allows
    /// n keeps one pixel of n, spread evenly over rows and columns; 1 keeps all.
    unsigned thinning = 1;
    bool ignoreCrs = false;     ///< writes a LAS file without a CRS
    std::wstring outputFolder;  ///< full path, no project token; created if missing
};

/// Minor LAS version for a record's `demLasVersion` (0, 1, 3, 4, 5 give 0 to 4); 4 for any other.
int MinorVersionOfItem(std::int32_t demLasVersion);

/// A complete LAS file.
struct DemConversionResult {
    std::wstring lasPath;  ///< full path
    std::uint64_t points = 0;
    // X, Y, Z as in the header.
    std::array<double, 3> min{};
    std::array<double, 3> max{};
    std::string wkt;  ///< CRS of the file, UTF-8; empty for none
    /// Sentences for the user about a loss in the conversion, such as a CRS that the LAS version cannot
    /// state.
    std::vector<std::wstring> warnings;
};

/// Converts the first band of a raster to "<name>.las" in the output folder, or to the next free
/// "<name> (2).las": no file is replaced, and nothing is written beside the raster. Memory use does not grow
/// with the raster. Progress counts pixels and sets no text; it is polled for a stop at least once per block.
/// Returns nullopt when stopped; leaves no file then, nor after a failure. Throws LDataError with the file
/// and the cause in plain words. Requires SetUpGdal. Thread-safe, also for rasters of the same name and
/// output folder.
std::optional<DemConversionResult> ConvertDem(const std::wstring& demPath,
                                              const DemConversionOptions& options, Kst::ProgressIf& progress);

}  // namespace orvex
