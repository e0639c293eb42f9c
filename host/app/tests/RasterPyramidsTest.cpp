#include "host/app/RasterPyramids.h"

#include <gmock/gmock.h>

#include "host/app/tests/TestRasters.h"
#include "support/Files.h"
#include "support/Text.h"

namespace orvex {
namespace {

using testing::TemporaryFolder;
using testing::TestRaster;

/// Remembers what it is told and stops at a position.
class Steps final : public Kst::ProgressIf {
  public:
    std::uint64_t range = 0;
    std::uint64_t last = 0;
    std::uint64_t stopAt = UINT64_MAX;

    void SetRange(std::uint64_t total) override { range = total; }
    void SetText(const std::wstring&) override {}
    void SetPosition(std::uint64_t done) override {
        EXPECT_GE(done, last);
        last = done;
    }
    bool IsCancelled() override { return last >= stopAt; }
};

std::wstring Large(const TemporaryFolder& folder, const std::wstring& name, bool withPalette = false) {
    std::vector<double> values(std::size_t{2000} * 1100);
    for (std::size_t i = 0; i < values.size(); ++i) {
        values[i] = i % 2 == 0 ? 10 : 30;
    }
    const TestRaster raster(2000, 1100, GDT_Byte, values);
    GDALColorTable colours;
    for (int i = 0; withPalette && i < 40; ++i) {
        const GDALColorEntry grey{static_cast<short>(i), 0, 0, 255};
        colours.SetColorEntry(i, &grey);
    }
    if (withPalette) {
        raster.Band(1).SetColorTable(&colours);
    }
    raster.Band(1).SetNoDataValue(0);
    return raster.Save(folder, name);
}

std::vector<int> OverviewWidths(const std::wstring& path) {
    const GDALDatasetUniquePtr dataset(GDALDataset::Open(ToUtf8(path).c_str()));
    GDALRasterBand* band = dataset->GetRasterBand(1);
    std::vector<int> widths(static_cast<std::size_t>(band->GetOverviewCount()));
    for (std::size_t i = 0; i < widths.size(); ++i) {
        widths[i] = band->GetOverview(static_cast<int>(i))->GetXSize();
    }
    return widths;
}

int FirstOverviewPixel(const std::wstring& path) {
    const GDALDatasetUniquePtr dataset(GDALDataset::Open(ToUtf8(path).c_str()));
    std::uint8_t pixel = 0;
    EXPECT_EQ(dataset->GetRasterBand(1)->GetOverview(0)->RasterIO(GF_Read, 5, 5, 1, 1, &pixel, 1, 1, GDT_Byte,
                                                                  0, 0),
              CE_None);
    return pixel;
}

TEST(RasterPyramids, LieBesideTheRasterWhichStaysAsItWas) {
    const TemporaryFolder folder;
    const std::wstring grey = Large(folder, L"Gr\u00F6\u00DFe 1.tif");
    const std::wstring map = Large(folder, L"map.tif", true);
    const std::wstring small =
        TestRaster(10, 10, GDT_Byte, std::vector<double>(100, 1)).Save(folder, L"small.tif");
    const std::string before = testing::ReadFile(grey);
    Steps steps;
    const auto result = RasterPyramids::Build({grey, small, map}, steps);
    EXPECT_EQ(result.built, 2U);
    EXPECT_EQ(result.notNeeded, 1U);
    EXPECT_TRUE(result.failures.empty());
    EXPECT_EQ(testing::ReadFile(grey), before);
    EXPECT_EQ(OverviewWidths(grey), (std::vector<int>{1000, 500, 250}));
    EXPECT_EQ(FirstOverviewPixel(grey), 20) << "averaged";
    EXPECT_THAT(FirstOverviewPixel(map), ::testing::AnyOf(10, 30))
        << "an average of colour numbers means nothing";
    EXPECT_EQ(folder.Entries(), 5U) << "three rasters and two files of levels";
    EXPECT_EQ(steps.range, 3000U);

    EXPECT_EQ(RasterPyramids::Build({grey}, steps = {}).notNeeded, 1U);
}

TEST(RasterPyramids, OneFailureLeavesTheOthersAndLosesNothing) {
    const TemporaryFolder folder;
    const std::wstring bad = folder.Write(L"bad.tif", "no raster");
    const std::wstring taken = Large(folder, L"taken.tif");
    folder.Write(L"taken.tif.ovr", "somebody's own file");
    const std::wstring good = Large(folder, L"good.tif");
    Steps steps;
    const auto result = RasterPyramids::Build({bad, taken, good}, steps);
    EXPECT_EQ(result.built, 1U);
    ASSERT_EQ(result.failures.size(), 2U);
    EXPECT_EQ(result.failures[0].path, bad);
    EXPECT_NE(result.failures[1].cause.find(L"taken.tif.ovr"), std::wstring::npos);
    EXPECT_EQ(testing::ReadFile(folder.Name(L"taken.tif.ovr")), "somebody's own file");
    EXPECT_EQ(folder.Entries(), 5U);
}

TEST(RasterPyramids, StoppingLeavesNothingHalfMade) {
    const TemporaryFolder folder;
    const std::wstring first = Large(folder, L"1.tif");
    const std::wstring second = Large(folder, L"2.tif");
    Steps steps;
    steps.stopAt = 1300;
    const auto result = RasterPyramids::Build({first, second}, steps);
    EXPECT_TRUE(result.stopped);
    EXPECT_EQ(result.built, 1U);
    EXPECT_TRUE(FileExists(first + L".ovr"));
    EXPECT_EQ(folder.Entries(), 3U);
}

TEST(RasterPyramids, WhateverTheCoordinateSystemIs) {
    const TemporaryFolder folder;
    const TestRaster raster(1100, 2, GDT_Byte, std::vector<double>(2200, 7));
    OGRSpatialReference ellipsoidal;
    ASSERT_EQ(ellipsoidal.importFromEPSG(4979), OGRERR_NONE);
    GDAL_GCP points[4] = {};
    GDALInitGCPs(4, points);
    for (int i = 0; i < 4; ++i) {
        points[i].dfGCPPixel = points[i].dfGCPX = i % 2;
        points[i].dfGCPLine = points[i].dfGCPY = i < 2 ? 0 : 1;
    }
    raster->SetGCPs(4, points, &ellipsoidal);
    GDALDeinitGCPs(4, points);
    Steps steps;
    const auto result = RasterPyramids::Build({raster.Save(folder, L"points.tif")}, steps);
    EXPECT_EQ(result.built, 1U);
    EXPECT_TRUE(result.failures.empty()) << ToUtf8(result.failures.front().cause);
}

}  // namespace
}  // namespace orvex
