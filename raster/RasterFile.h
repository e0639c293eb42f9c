#pragma once
#include <memory>
#include <string>

#include "orvexcommon/RasterFileInfo.h"
#include "raster/RasterInspection.h"

namespace orvex {

/// What the host gets of one listed raster file: a view of its inspection, which it keeps alive.
class RasterFile final : public RasterFileInfo {
  public:
    /// `inspection`: never null.
    explicit RasterFile(std::shared_ptr<const RasterInspection> inspection)
        : inspection_(std::move(inspection)) {}

    const std::wstring& FileName() const override { return inspection_->path; }
    const RasterProperties& Properties() const override { return inspection_->properties; }
    bool IsBigTiff() const override { return inspection_->bigTiff; }

  private:
    std::shared_ptr<const RasterInspection> inspection_;
};

}  // namespace orvex
