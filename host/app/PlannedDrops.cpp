#include "host/app/PlannedDrops.h"

#include "host/app/DialogDrop.h"

namespace orvex {

PlannedDrops::PlannedDrops(DropPlan plan, QObject* parent) : QObject(parent), plan_(std::move(plan)) {
    connect(&timer_, &QTimer::timeout, this, &PlannedDrops::DropWhenOpen);
    timer_.start(10);
}

void PlannedDrops::DropWhenOpen() {
    if (FindAddFilesDialog() == nullptr) {
        return;
    }
    timer_.stop();
    deleteLater();
    // Each drop returns when its files are read. The user may close the dialog meanwhile.
    const std::pair<const char*, QStringList> drops[] = {
        {kDemPage, plan_.dems}, {kRasterPage, plan_.rasters}, {kLasPage, plan_.las}};
    for (const auto& [page, paths] : drops) {
        QWidget* dialog = FindAddFilesDialog();
        if (dialog != nullptr && !paths.isEmpty() && ShowPage(dialog, page)) {
            DropPaths(dialog, paths);
        }
    }
}

}  // namespace orvex
