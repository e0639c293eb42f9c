#pragma once
#include <string>

#include "orvexcommon/RasterProperties.h"

namespace orvex {

/// Details of a raster file that the dialog listed, for the host. The owner of the pointer deletes it.
class RasterFileInfo {
  public:
    virtual ~RasterFileInfo() = default;

    /// Full path.
    virtual const std::wstring& FileName() const = 0;
    virtual const RasterProperties& Properties() const = 0;
    virtual bool IsBigTiff() const = 0;
};

}  // namespace orvex
