#pragma once
#include <gdal.h>

#include <memory>

namespace orvex {

struct GdalDatasetClose {
    void operator()(GDALDatasetH dataset) const noexcept { GDALClose(dataset); }
};
/// An open file of GDAL's; closed when destroyed. Closing reports errors like any call: keep a GdalErrorScope
/// around it.
using GdalDataset = std::unique_ptr<void, GdalDatasetClose>;

}  // namespace orvex
