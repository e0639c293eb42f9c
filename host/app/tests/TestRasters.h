#pragma once
#include <gdal_priv.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "host/dem/HostGdal.h"
#include "support/Text.h"
#include "support/testing/TemporaryFolder.h"

namespace orvex::testing {

/// Small raster in memory, to be changed and saved.
class TestRaster {
  public:
    /// `values` row by row; the same in each band.
    TestRaster(int width, int height, GDALDataType type, const std::vector<double>& values, int bands = 1) {
        SetUpGdal();
        dataset_.reset(
            GetGDALDriverManager()->GetDriverByName("MEM")->Create("", width, height, bands, type, nullptr));
        for (int band = 1; band <= bands; ++band) {
            SetValues(band, values);
        }
    }

    GDALDataset* operator->() const { return dataset_.get(); }
    GDALRasterBand& Band(int number) const { return *dataset_->GetRasterBand(number); }
    void SetValues(int band, std::vector<double> values) const {
        const int width = dataset_->GetRasterXSize();
        const int height = dataset_->GetRasterYSize();
        EXPECT_EQ(values.size(), static_cast<std::size_t>(width) * static_cast<std::size_t>(height));
        EXPECT_EQ(Band(band).RasterIO(GF_Write, 0, 0, width, height, values.data(), width, height,
                                      GDT_Float64, 0, 0),
                  CE_None);
    }
    /// Saves it with creation options such as "NBITS=1"; returns the path.
    std::wstring Save(const TemporaryFolder& folder, const std::wstring& name,
                      const std::vector<std::string>& options = {}, const char* driver = "GTiff") const {
        std::wstring path = folder.Name(name);
        CPLStringList list;
        for (const std::string& option : options) {
            list.AddString(option.c_str());
        }
        const GDALDatasetUniquePtr saved(GetGDALDriverManager()->GetDriverByName(driver)->CreateCopy(
            ToUtf8(path).c_str(), dataset_.get(), FALSE, list.List(), nullptr, nullptr));
        EXPECT_NE(saved, nullptr);
        return path;
    }

  private:
    GDALDatasetUniquePtr dataset_;
};

}  // namespace orvex::testing
