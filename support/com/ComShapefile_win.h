#pragma once
#include <memory>

#include "orvexcommon/HostInterfaces.h"
#include "support/com/ComApartment_win.h"

namespace orvex {

/// The host's shapefile object, for the calling thread; null and a failure code if it cannot be created. A
/// thread in no apartment enters the multithreaded one, which `usage` keeps alive.
std::unique_ptr<OrvexShapefile> MakeComShapefile(std::shared_ptr<const MtaUsage> usage, std::int32_t& result);

}  // namespace orvex
