#pragma once
#include <string>

#include "orvexcommon/RasterProperties.h"

namespace orvex {

struct FileReport;

/// The facts of a raster file.
struct RasterReport {
    RasterProperties properties;
    std::wstring unit;  ///< as the dialog shows it
    bool bigTiff = false;

    /// The first band; one without facts when none is described.
    const RasterBandProperties& FirstBand() const;
};

/// Reads `report.path` as an image.
void InspectImage(FileReport& report);
/// Reads `report.path` as a raster of heights.
void InspectDem(FileReport& report);

}  // namespace orvex
