#include "las/page/LasPageControls.h"

namespace orvex {

FileListControls LasListControls() {
    using namespace las_control;
    FileListControls controls;
    controls.filesCaption = kFilesCaption;
    controls.grid = kGrid;
    controls.addFiles = kAddFiles;
    controls.addFolder = kAddFolder;
    controls.remove = kRemove;
    controls.clear = kClear;
    controls.detailColumns = kDetailColumns;
    controls.refresh = kRefresh;
    controls.help = kHelp;
    return controls;
}

std::vector<ControlState> LasControlStates(const LasPageState& state) {
    using namespace las_control;
    const bool idle = !state.busy;
    const bool pyramids = idle && state.options.readWrite && !state.options.footprintsOnly;
    const bool orvexLas = pyramids && state.options.pyramidType == LasPyramidType::OrvexLas;
    const std::vector<ControlState> own{
        {kReadOnly, idle},
        {kReadWrite, idle},
        {kLoadFiles, idle},
        {kFootprints, idle},
        {kAppend, idle},
        {kIgnoreCrs, idle},
        {kLoadCorrupt, idle},
        {kPyramidOrvexLas, pyramids},
        {kPyramidQvr, pyramids},
        {kPyramidNone, pyramids},
        {kThinningCaption, idle},
        {kThinning, idle},
        {kConvertQvr, orvexLas},
        {kReCreate, orvexLas},
        {kOriginalsGroup, orvexLas},
        {kOverwrite, orvexLas},
        {kBackup, orvexLas},
        {kBackupCompress, orvexLas},
    };
    std::vector<ControlState> states = FileListStates(LasListControls(), state);
    states.insert(states.end(), own.begin(), own.end());
    return states;
}

}  // namespace orvex
