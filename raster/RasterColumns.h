#pragma once
#include <span>

#include "dialog/grid/GridColumn.h"
#include "raster/RasterInspection.h"

namespace orvex {

/// The columns of the raster grid, by index. The DEM grid has the same without BigTiff.
enum class RasterColumn : int {
    LoadFlag,
    Path,     ///< hidden: the full path
    Details,  ///< hidden: the address of the file's RasterFile as decimal text
    FileName,
    Folder,
    Size,
    Modified,
    Layer,
    Summary,
    FileType,
    BigTiff,
    ImageSize,
    Width,
    Height,
    Bands,
    BitsPerBand,
    ColorModel,
    Photometric,
    ProjectionCode,
    Overviews,
    PixelSize,
    PixelSizes,
    MinimumX,
    MaximumX,
    MinimumY,
    MaximumY,
    CrsName,
    LinearUnit,
    AngularUnit,
    Wkt,
    GpsTime,
};

inline constexpr int kRasterColumnCount = 31;
inline constexpr int kDemColumnCount = 30;

/// The table that describes the grid of a page.
std::span<const GridColumn> RasterColumns(RasterUse use);

/// What a page shows at an index of its grid.
RasterColumn RasterColumnAt(RasterUse use, int index);

/// Where the raster page shows a column.
constexpr int IndexOf(RasterColumn column) {
    return static_cast<int>(column);
}

}  // namespace orvex
