#pragma once
#include <ole2.h>

#include <memory>

#include "orvexcommon/HostInterfaces.h"

namespace orvex {

/// The project behind a host's application object. Null and kHostNotImplemented if the object does not offer
/// one, as those of hosts that take no photos. Lives on the thread of the application object.
std::unique_ptr<OrvexProject> MakeComProject(IUnknown& application, std::int32_t& result);

}  // namespace orvex
