#pragma once
#include <ole2.h>

#include <memory>

#include "orvexcommon/HostInterfaces.h"

namespace orvex {

/// A copy of the account behind a host's application object. Null with kHostOk if nobody is signed in; null
/// and kHostNotImplemented if the object does not offer one, as those of hosts without cloud layers.
std::unique_ptr<OrvexUserAccount> MakeComUserAccount(IUnknown& application, std::int32_t& result);

}  // namespace orvex
