#pragma once
#include "support/HostObjects.h"

namespace orvex {

/// The host's raster-information class through COM. Its threads enter the multithreaded apartment, when they
/// are in none; the apartment, and with it the host's code, stays while the maker or a copy of it exists.
RasterInformationMaker ComRasterInformation();

}  // namespace orvex
