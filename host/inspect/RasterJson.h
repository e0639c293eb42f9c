#pragma once
#include "host/inspect/JsonWriter.h"
#include "host/inspect/RasterReport.h"

namespace orvex {

/// Writes the facts of a raster as an object.
void WriteRasterJson(JsonWriter& json, const RasterReport& report);

}  // namespace orvex
