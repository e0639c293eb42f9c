#include "las/LasPageControls.h"

namespace orvex {

std::vector<LasControlState> LasControlStates(const LasPageState& state) {
    using namespace las_control;
    const bool idle = !state.busy;
    const bool pyramids = idle && state.options.readWrite && !state.options.footprintsOnly;
    const bool orvexLas = pyramids && state.options.pyramidType == LasPyramidType::OrvexLas;
    return {
        {kAddFiles, idle},
        {kAddFolder, idle},
        {kRemove, idle && state.selectedRows > 0},
        {kClear, idle && state.rows > 0},
        {kRefresh, idle && state.rows > 0},
        {kDetailColumns, idle},
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
}

}  // namespace orvex
