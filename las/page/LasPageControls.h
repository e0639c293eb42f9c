#pragma once
#include <vector>

#include "dialog/page/FileListControls.h"
#include "las/page/LasPageOptions.h"

namespace orvex {

/// Control ids of the LAS page. A widget is named "c" followed by its id.
namespace las_control {
inline constexpr int kFilesCaption = 247;
inline constexpr int kDetailColumns = 248;
inline constexpr int kRefresh = 249;
inline constexpr int kHelp = 250;
inline constexpr int kGrid = 251;
inline constexpr int kAddFolder = 252;
inline constexpr int kAddFiles = 253;
inline constexpr int kRemove = 254;
inline constexpr int kClear = 255;
inline constexpr int kOpenGroup = 258;
inline constexpr int kReadOnly = 259;
inline constexpr int kReadWrite = 260;
inline constexpr int kLoadGroup = 261;
inline constexpr int kLoadFiles = 262;
inline constexpr int kFootprints = 263;
inline constexpr int kPyramidGroup = 264;
inline constexpr int kThinningCaption = 266;
inline constexpr int kThinning = 267;
inline constexpr int kPyramidOrvexLas = 268;
inline constexpr int kPyramidQvr = 269;
inline constexpr int kPyramidNone = 270;
inline constexpr int kAppend = 280;
inline constexpr int kIgnoreCrs = 281;
inline constexpr int kOptionsGroup = 282;
inline constexpr int kLoadCorrupt = 283;
inline constexpr int kConvertQvr = 284;
inline constexpr int kOriginalsGroup = 375;
inline constexpr int kOverwrite = 376;
inline constexpr int kBackup = 377;
inline constexpr int kBackupCompress = 378;
inline constexpr int kReCreate = 417;
}  // namespace las_control

/// Those that every file page has.
FileListControls LasListControls();

/// What decides which controls can be used.
struct LasPageState : FileListState {
    LasPageOptions options;
};

/// Every control whose state depends on something, with its state. Pyramids are built only into files that
/// are loaded read-write; conversion, re-creation and what happens to the originals mean something only for
/// OrvexLAS. Thinning is always checked on OK, so it can always be corrected.
std::vector<ControlState> LasControlStates(const LasPageState& state);

}  // namespace orvex
