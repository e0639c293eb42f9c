#include "host/app/HostObjectsSetup.h"

namespace orvex {

HostObjectsSetup::HostObjectsSetup() = default;

HostObjectsSetup::~HostObjectsSetup() = default;

}  // namespace orvex
