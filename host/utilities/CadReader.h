#pragma once
#include <string>

#include "host/utilities/CadKinds.h"
#include "host/utilities/FeatureTally.h"

namespace orvex {

/// Prepares GDAL for ReadCad; later calls do nothing. GDAL takes no lock then: call it before other threads
/// use GDAL.
void PrepareGdalReading();

/// Reads a drawing through GDAL, in one pass. Throws LDataError.
FeatureInfo ReadCad(const std::wstring& path, CadKind kind);

}  // namespace orvex
