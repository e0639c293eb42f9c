#pragma once
#include "orvexcommon/HostInterfaces.h"

namespace orvex::host {

/// The reference host's raster-information object: what GDAL knows of a file, with all details. Safe on any
/// thread.
class HostRasterInformation final : public OrvexRasterInformation {
  public:
    std::int32_t Describe(const std::wstring& path, RasterProperties& properties,
                          std::wstring& reason) override;
};

}  // namespace orvex::host
