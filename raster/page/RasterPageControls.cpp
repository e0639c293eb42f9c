#include "raster/page/RasterPageControls.h"

#include <initializer_list>

namespace orvex {

namespace {

std::vector<ControlState> WithOptions(std::vector<ControlState> states, std::initializer_list<int> options,
                                      bool enabled) {
    for (const int id : options) {
        states.push_back({id, enabled});
    }
    return states;
}

}  // namespace

FileListControls RasterListControls() {
    using namespace raster_control;
    return {.filesCaption = kFilesCaption,
            .grid = kGrid,
            .addFiles = kAddFiles,
            .addFolder = kAddFolder,
            .remove = kRemove,
            .clear = kClear,
            .detailColumns = kDetailColumns,
            .selectAll = kSelectAll,
            .refresh = kRefresh,
            .help = kHelp};
}

FileListControls DemListControls() {
    using namespace dem_control;
    return {.filesCaption = kFilesCaption,
            .grid = kGrid,
            .addFiles = kAddFiles,
            .addFolder = kAddFolder,
            .remove = kRemove,
            .clear = kClear,
            .detailColumns = kDetailColumns,
            .selectAll = kSelectAll,
            .refresh = kRefresh,
            .help = kHelp};
}

std::vector<ControlState> RasterControlStates(const FileListState& state) {
    using namespace raster_control;
    return WithOptions(FileListStates(RasterListControls(), state), {kAppend, kPyramid}, !state.busy);
}

std::vector<ControlState> DemControlStates(const FileListState& state) {
    using namespace dem_control;
    return WithOptions(FileListStates(DemListControls(), state),
                       {kReadOnly, kReadWrite, kAppend, kIgnoreCrs, kPyramid, kFolder, kBrowse, kInsertToken,
                        kVersion, kFormat, kThinning},
                       !state.busy);
}

}  // namespace orvex
