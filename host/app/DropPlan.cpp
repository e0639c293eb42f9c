#include "host/app/DropPlan.h"

#include <QDir>
#include <QFileInfo>

#include "support/DataKinds.h"
#include "support/QtText.h"

namespace orvex {

DropPlan DistributePaths(const QStringList& paths) {
    DropPlan plan;
    for (const QString& path : paths) {
        if (QFileInfo(path).isDir()) {
            plan.las.append(path);
            plan.rasters.append(path);
            plan.dems.append(path);
            continue;
        }
        const DataKind page = DropPageOf(ToWide(path)).value_or(DataKind::Las);
        QStringList& files = page == DataKind::Dem      ? plan.dems
                             : page == DataKind::Raster ? plan.rasters
                                                        : plan.las;
        files.append(path);
    }
    return plan;
}

DropPlan SamplePlan(const QString& dataFolder) {
    const QDir data(dataFolder);
    const QString elevation = data.filePath("elevation");
    // A search of a folder leaves text grids out; they are taken when they are named.
    return {{dataFolder}, {data.filePath("rasters")}, {elevation, elevation + "/text grid.asc"}};
}

}  // namespace orvex
