#pragma once
#include <string>

#include "orvexcommon/RasterProperties.h"

namespace orvex {

/// What the host gets to know of one raster file that the dialog listed. Whoever owns the pointer deletes it.
class RasterFileInfo {
  public:
    virtual ~RasterFileInfo() = default;

    /// Full path.
    virtual const std::wstring& FileName() const = 0;
    virtual const RasterProperties& Properties() const = 0;
    virtual bool IsBigTiff() const = 0;
};

}  // namespace orvex
