#pragma once
#include <gdal_priv.h>

#include <array>
#include <string>
#include <vector>

#include "support/testing/TemporaryFolder.h"

namespace orvex::testing {

/// A small raster in memory, to be changed and saved.
class TestRaster {
  public:
    /// The values of band 1 row by row; those of the other bands are the same.
    TestRaster(int width, int height, GDALDataType type, const std::vector<double>& values, int bands = 1);

    GDALDataset* operator->() const { return dataset_.get(); }
    GDALRasterBand& Band(int number) const { return *dataset_->GetRasterBand(number); }
    void SetValues(int band, const std::vector<double>& values) const;
    /// Saves it as GeoTIFF with these creation options ("NBITS=1") and returns its path.
    std::wstring Save(const TemporaryFolder& folder, const std::wstring& name,
                      const std::vector<std::string>& options = {}, const char* driver = "GTiff") const;

  private:
    GDALDatasetUniquePtr dataset_;
};

/// `count` times the values from 0 on, `step` apart.
std::vector<double> Ramp(int count, double step = 1);

}  // namespace orvex::testing
