#pragma once
// Conversion of CAD and KML files to shapefiles.
#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "support/ProgressIf.h"

namespace orvex {

/// Options of a conversion.
struct VectorConversionOptions {
    bool points = true;
    bool lines = true;
    bool polygons = true;
    bool text = true;           ///< texts of drawings, as points
    std::wstring outputFolder;  ///< full path; created if missing
};

/// A complete shapefile.
struct ConvertedShapefile {
    std::wstring path;               ///< full path of the ".shp" file
    std::int32_t shapeType = 0;      ///< code of its header
    std::uint64_t count = 0;         ///< features
    std::array<double, 4> extent{};  ///< minX, minY, maxX, maxY
};

struct VectorConversionResult {
    std::vector<ConvertedShapefile> shapefiles;  ///< in the order of their layers in the file
    std::string wkt;                             ///< CRS of the shapefiles, UTF-8; empty for none
    /// Sentences for the user about what was left out, cut, or named differently because a name was taken.
    std::vector<std::wstring> warnings;
    std::vector<std::wstring> notes;  ///< the same about changes without a loss
};

/// Most shapefiles that are made of one file.
inline constexpr std::size_t kMostShapefiles = 1000;

/// Converts a DWG (2000), DXF, DGN (7), KML or KMZ file to shapefiles in the output folder, one for each
/// layer and kind of geometry that occurs and is wanted: "<file>_<layer>_points.shp" and the like, or the
/// next free "<file>_<layer>_points (2).shp": no file is replaced. Heights are kept: all shapes have a Z, 0
/// where the file states none. Points of a feature become features of their own, its lines and polygons one
/// each. All shapefiles appear together once they are complete. Memory does not grow with a DXF file, apart
/// from its blocks; of the other kinds, GDAL reads the file as a whole.
///
/// Progress counts features where the reader knows their number; a stop is polled for between features.
/// Returns nullopt when stopped; leaves no file then, nor after a failure. Throws LDataError with the file
/// and the cause in plain words. Requires SetUpGdal. Thread-safe.
std::optional<VectorConversionResult> ConvertVector(const std::wstring& path,
                                                    const VectorConversionOptions& options,
                                                    Kst::ProgressIf& progress);

}  // namespace orvex
