#pragma once
#include <span>

#include "dialog/grid/GridColumn.h"

namespace orvex {

/// The columns of the LAS grid, by index.
enum class LasColumn : int {
    LoadFlag,
    Path,     ///< hidden: the full path
    Details,  ///< hidden: the address of the file's LASFile as decimal text
    FileName,
    Folder,
    Size,
    Version,
    Layer,
    Epsg,
    State,
    CrsName,
    VerticalCrs,
    Units,
    Group,
    Companion,
    Compressed,
    Returns,
    PointFormat,
    RecordLength,
    ExtraBytes,
    SystemId,
    Software,
    Created,
    SourceId,
    ProjectId,
    GlobalEncoding,
    HeaderSize,
    OffsetToPoints,
    VlrCount,
    EvlrCount,
    CrsSource,
    Waveform,
    PointsByReturn,
    GpsTime,
    Modified,
    Points,
    Density,
    Spacing,
    ScaleX,
    ScaleY,
    ScaleZ,
    MinimumX,
    MinimumY,
    MinimumZ,
    MaximumX,
    MaximumY,
    MaximumZ,
    OffsetX,
    OffsetY,
    OffsetZ,
    FindingCount,
    Attributes,
};

inline constexpr int kLasColumnCount = 52;

constexpr int IndexOf(LasColumn column) {
    return static_cast<int>(column);
}

/// The table that describes the grid, in the order of LasColumn.
std::span<const GridColumn> LasColumns();

}  // namespace orvex
