#pragma once
#include <vector>

#include "dialog/page/FileListControls.h"

namespace orvex {

/// Control ids of the raster page. A widget is named "c" followed by its id.
namespace raster_control {
inline constexpr int kFilesCaption = 430;
inline constexpr int kAddFiles = 431;
inline constexpr int kAddFolder = 432;
inline constexpr int kRemove = 433;
inline constexpr int kClear = 434;
inline constexpr int kDetailColumns = 435;
inline constexpr int kSelectAll = 436;
inline constexpr int kRefresh = 437;
inline constexpr int kHelp = 438;
inline constexpr int kGrid = 439;
inline constexpr int kOptionsGroup = 440;
inline constexpr int kAppend = 441;
inline constexpr int kPyramid = 442;
}  // namespace raster_control

/// Control ids of the DEM page.
namespace dem_control {
inline constexpr int kFilesCaption = 450;
inline constexpr int kAddFiles = 451;
inline constexpr int kAddFolder = 452;
inline constexpr int kRemove = 453;
inline constexpr int kClear = 454;
inline constexpr int kDetailColumns = 455;
inline constexpr int kSelectAll = 456;
inline constexpr int kRefresh = 457;
inline constexpr int kHelp = 458;
inline constexpr int kGrid = 459;
inline constexpr int kOpenGroup = 460;
inline constexpr int kReadOnly = 461;
inline constexpr int kReadWrite = 462;
inline constexpr int kOptionsGroup = 463;
inline constexpr int kAppend = 464;
inline constexpr int kIgnoreCrs = 465;
inline constexpr int kPyramid = 466;
inline constexpr int kConversionGroup = 467;
inline constexpr int kFolderCaption = 468;
inline constexpr int kFolder = 469;
inline constexpr int kBrowse = 470;
inline constexpr int kInsertToken = 471;
inline constexpr int kVersionCaption = 472;
inline constexpr int kVersion = 473;
inline constexpr int kFormatCaption = 474;
inline constexpr int kFormat = 475;
inline constexpr int kThinningCaption = 476;
inline constexpr int kThinning = 477;
}  // namespace dem_control

/// Those that every file page has.
FileListControls RasterListControls();
FileListControls DemListControls();

/// Every control whose state depends on something, with its state. Options can be chosen whenever no run is
/// under way; none of them decides about another.
std::vector<ControlState> RasterControlStates(const FileListState& state);
std::vector<ControlState> DemControlStates(const FileListState& state);

}  // namespace orvex
