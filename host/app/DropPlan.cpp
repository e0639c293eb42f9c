#include "host/app/DropPlan.h"

#include <QDir>
#include <QFileInfo>

namespace orvex {

namespace {

/// Of files that can be either, as GeoTIFF, most are pictures.
constexpr const char* kPictures[] = {"tif", "tiff", "jpg", "jpeg", "rgb", "png", "sid",
                                     "gif", "bmp",  "jp2", "jp2k", "ecw", "img"};
constexpr const char* kElevations[] = {"asc", "dem", "flt", "hgt", "bil", "dt0", "dt1", "dt2", "grd", "adf"};

bool IsAmong(const QString& extension, const auto& extensions) {
    return std::ranges::any_of(extensions,
                               [&extension](const char* one) { return extension == QLatin1String(one); });
}

}  // namespace

DropPlan DistributePaths(const QStringList& paths) {
    DropPlan plan;
    for (const QString& path : paths) {
        const QFileInfo file(path);
        const QString extension = file.suffix().toLower();
        if (file.isDir()) {
            plan.las.append(path);
            plan.rasters.append(path);
            plan.dems.append(path);
        } else if (IsAmong(extension, kPictures)) {
            plan.rasters.append(path);
        } else if (IsAmong(extension, kElevations)) {
            plan.dems.append(path);
        } else {
            plan.las.append(path);
        }
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
