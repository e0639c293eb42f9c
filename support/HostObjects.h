#pragma once
#include <cstdint>
#include <functional>
#include <memory>

#include "orvexcommon/HostInterfaces.h"

namespace orvex {

/// Makes raster-information objects, on any thread; null and a failure code when the host has none. It owns
/// what it needs, so that a worker thread may use it after the dialog has gone.
using RasterInformationMaker = std::function<std::unique_ptr<OrvexRasterInformation>(std::int32_t& result)>;

/// How the component gets the host's objects. Null and a failure code when an object cannot be made.
class HostObjects {
  public:
    virtual ~HostObjects() = default;
    virtual std::unique_ptr<OrvexSystemSettings> CreateSystemSettings(std::int32_t& result) = 0;
    virtual std::unique_ptr<OrvexApplication> CreateApplication(std::int32_t& result) = 0;
    virtual RasterInformationMaker RasterInformation() = 0;
};

/// The platform's half: class ids in the host's object library (COM on Windows).
std::unique_ptr<HostObjects> MakeHostObjects();

}  // namespace orvex
