#include "host/inspect/RasterReport.h"

#include <utility>

#include "host/inspect/FileReport.h"
#include "raster/RasterInspection.h"

namespace orvex {

namespace {

void Inspect(FileReport& report, RasterUse use) {
    RasterInspection inspection = InspectRasterFile(report.path, use);
    report.loadable = inspection.loadable;
    report.summary = std::move(inspection.summary);
    for (Finding& finding : inspection.findings) {
        report.findings.push_back(std::move(finding.text));
    }
    if (inspection.loadable) {
        report.crs = inspection.crs;
        report.raster = {std::move(inspection.properties), std::move(inspection.unit), inspection.bigTiff};
    }
}

}  // namespace

const RasterBandProperties& RasterReport::FirstBand() const {
    static const RasterBandProperties none;
    return properties.bandDetails.empty() ? none : properties.bandDetails.front();
}

void InspectImage(FileReport& report) {
    Inspect(report, RasterUse::Image);
}

void InspectDem(FileReport& report) {
    Inspect(report, RasterUse::Dem);
}

}  // namespace orvex
