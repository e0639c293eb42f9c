#pragma once
#include <cstdint>
#include <memory>

#include "orvexcommon/HostInterfaces.h"

namespace orvex {

/// How the component gets the host's objects. Null and a failure code when an object cannot be made.
class HostObjects {
  public:
    virtual ~HostObjects() = default;
    virtual std::unique_ptr<OrvexSystemSettings> CreateSystemSettings(std::int32_t& result) = 0;
    virtual std::unique_ptr<OrvexApplication> CreateApplication(std::int32_t& result) = 0;
};

/// The platform's half: class ids in the host's object library (COM on Windows).
std::unique_ptr<HostObjects> MakeHostObjects();

}  // namespace orvex
