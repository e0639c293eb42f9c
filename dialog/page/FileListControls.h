#pragma once
// The controls that every file page has, and when they can be used; without a widget.
#include <cstddef>
#include <vector>

namespace orvex {

/// Control ids. A widget is named "c" followed by its id; a button with id 0 is not there.
struct FileListControls {
    int filesCaption = 0;
    int grid = 0;
    int addFiles = 0;
    int addFolder = 0;
    int remove = 0;
    int clear = 0;
    int detailColumns = 0;
    int selectAll = 0;
    int refresh = 0;
    int help = 0;
};

/// What decides which of these controls can be used.
struct FileListState {
    bool busy = false;  ///< a long run is under way
    std::size_t rows = 0;
    std::size_t selectedRows = 0;
};

struct ControlState {
    int id;
    bool enabled;
};

/// Every one of these controls whose state depends on something, with its state.
std::vector<ControlState> FileListStates(const FileListControls& controls, const FileListState& state);

}  // namespace orvex
