#include "host/app/tests/TestRasters.h"

#include <gtest/gtest.h>

#include "host/dem/HostGdal.h"
#include "support/Text.h"

namespace orvex::testing {

TestRaster::TestRaster(int width, int height, GDALDataType type, const std::vector<double>& values,
                       int bands) {
    SetUpGdal();
    dataset_.reset(
        GetGDALDriverManager()->GetDriverByName("MEM")->Create("", width, height, bands, type, nullptr));
    for (int band = 1; band <= bands; ++band) {
        SetValues(band, values);
    }
}

void TestRaster::SetValues(int band, const std::vector<double>& values) const {
    std::vector<double> copy = values;
    const int width = dataset_->GetRasterXSize();
    const int height = dataset_->GetRasterYSize();
    EXPECT_EQ(copy.size(), static_cast<std::size_t>(width) * static_cast<std::size_t>(height));
    EXPECT_EQ(
        Band(band).RasterIO(GF_Write, 0, 0, width, height, copy.data(), width, height, GDT_Float64, 0, 0),
        CE_None);
}

std::wstring TestRaster::Save(const TemporaryFolder& folder, const std::wstring& name,
                              const std::vector<std::string>& options, const char* driver) const {
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

std::vector<double> Ramp(int count, double step) {
    std::vector<double> values(static_cast<std::size_t>(count));
    for (std::size_t i = 0; i < values.size(); ++i) {
        values[i] = static_cast<double>(i) * step;
    }
    return values;
}

}  // namespace orvex::testing
