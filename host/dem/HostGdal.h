#pragma once
// GDAL for the host; the only place that uses the component's set-up and way of opening files.
#include <gdal_priv.h>

#include <string>

#include "support/GdalErrorScope.h"
#include "support/GdalRaii.h"

namespace orvex {

/// Sets GDAL up with the data installed beside the component; later calls do nothing. False if that data is
/// missing. Thread-safe.
bool SetUpGdal();

/// Opens a raster read-only, with drivers that neither contact a server nor write files beside the raster.
/// Null on failure; `cause` is then the reason in plain words, empty if GDAL gave none.
GDALDatasetUniquePtr OpenRasterFile(const std::wstring& path, std::wstring& cause);

/// Last error of the scope in plain words; empty if GDAL gave no reason.
std::wstring FailureReason(const GdalErrorScope& errors);

}  // namespace orvex
