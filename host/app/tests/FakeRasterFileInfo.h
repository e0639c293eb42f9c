#pragma once
#include <string>

#include "orvexcommon/RasterFileInfo.h"

namespace orvex::testing {

/// Details of a raster that does not exist. Counts how many are alive.
class FakeRasterFileInfo final : public RasterFileInfo {
  public:
    static inline int alive = 0;

    FakeRasterFileInfo() { ++alive; }
    ~FakeRasterFileInfo() override { --alive; }
    FakeRasterFileInfo(const FakeRasterFileInfo&) = delete;
    FakeRasterFileInfo& operator=(const FakeRasterFileInfo&) = delete;

    std::wstring name;
    RasterProperties properties;
    bool bigTiff = false;

    const std::wstring& FileName() const override { return name; }
    const RasterProperties& Properties() const override { return properties; }
    bool IsBigTiff() const override { return bigTiff; }
};

}  // namespace orvex::testing
