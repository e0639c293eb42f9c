#include "entry/AddFilesRun.h"

#include "dialog/AddFilesDlg.h"

namespace orvex {

bool RunAddFiles(AddFilesParams& params, DialogServices& services, std::span<const PageDescription> pages,
                 QWidget* parent) {
    AddFilesDlg dialog(params, services, pages, parent);
    if (!dialog.Run()) {
        dialog.ReleasePages();
        return false;
    }
    return HasResults(params);
}

bool HasResults(const AddFilesParams& params) {
    return !params.lasFiles.empty() || !params.rasterFiles.empty() || !params.featureFiles.empty() ||
           !params.demFiles.empty() || !params.photoFiles.empty() || !params.presignedUrlLayers.empty() ||
           !params.cloudLasLayers.empty();
}

}  // namespace orvex
