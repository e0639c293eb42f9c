#include "dialog/page/FileListControls.h"

namespace orvex {

std::vector<ControlState> FileListStates(const FileListControls& controls, const FileListState& state) {
    const bool idle = !state.busy;
    const bool hasRows = idle && state.rows > 0;
    std::vector<ControlState> states{
        {controls.addFiles, idle},
        {controls.addFolder, idle},
        {controls.remove, idle && state.selectedRows > 0},
        {controls.clear, hasRows},
        {controls.detailColumns, idle},
        {controls.selectAll, hasRows},
        {controls.refresh, hasRows},
    };
    std::erase_if(states, [](const ControlState& control) { return control.id == 0; });
    return states;
}

}  // namespace orvex
