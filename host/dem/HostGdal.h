#pragma once
// GDAL as the host uses it. The only place where it shares the component's set-up and its way to open files.
#include <gdal_priv.h>

#include <string>

#include "crs/GdalRaii.h"
#include "support/GdalErrorScope.h"

namespace orvex {

/// Sets GDAL up with the data beside the component; later calls do nothing. False when that data is missing.
/// Safe from any thread.
bool SetUpGdal();

/// Opens a raster for reading, with the drivers that neither ask a server nor leave files beside the raster.
/// Null when it cannot be opened; `cause` then has the reason in plain words, empty when GDAL gave none.
GDALDatasetUniquePtr OpenRasterFile(const std::wstring& path, std::wstring& cause);

/// The last error of the scope in plain words; empty when GDAL gave no reason.
std::wstring FailureReason(const GdalErrorScope& errors);

}  // namespace orvex
