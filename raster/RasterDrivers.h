#pragma once
#include <memory>
#include <string>
#include <vector>

namespace orvex {

/// A list as GDAL takes it: texts of its own and pointers to them, the last one null.
class GdalList {
  public:
    explicit GdalList(std::vector<std::string> texts);
    GdalList(const GdalList&) = delete;
    GdalList& operator=(const GdalList&) = delete;

    const char* const* Get() const { return pointers_.data(); }
    std::size_t size() const { return texts_.size(); }

  private:
    const std::vector<std::string> texts_;
    std::vector<const char*> pointers_;
};
using GdalListPtr = std::shared_ptr<const GdalList>;

/// The short names of GDAL's raster drivers that may open a file in a list. Safe from any thread.
GdalListPtr RasterDrivers();

}  // namespace orvex
