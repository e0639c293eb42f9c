// What the component learns of a raster file from this host, on a worker thread as it asks.
#include <gtest/gtest.h>

#include <fstream>
#include <thread>

#include "host/objects/HostClasses.h"
#include "raster/RasterInspection.h"
#include "raster/testing/GeoTiff.h"
#include "support/Text.h"

namespace orvex::host {
namespace {

class HostRasterInformationTest : public ::testing::Test {
  protected:
    struct Answer {
        std::int32_t result = 1;
        RasterProperties properties;
        std::wstring reason;
    };

    Answer Describe(const std::wstring& path) const {
        Answer answer;
        std::thread([&] {
            if (const auto object = maker_(answer.result)) {
                answer.result = object->Describe(path, answer.properties, answer.reason);
            }
        }).join();
        return answer;
    }

    testing::TemporaryFolder folder_;
    const HostClasses classes_{{folder_.Path() / "host.sqlite", {}}};
    const RasterInformationMaker maker_ = MakeHostObjects()->RasterInformation();
};

TEST_F(HostRasterInformationTest, AFileIsDescribedWithAllDetails) {
    testing::GeoTiff tiff;
    tiff.bands = 3;
    tiff.options = {"COMPRESS=DEFLATE"};
    const Answer answer = Describe(tiff.Write(folder_, L"\u00dcber\U0001F5FA.tif"));
    EXPECT_EQ(answer.result, kHostOk) << ToUtf8(answer.reason);
    EXPECT_EQ(answer.properties.width, 20);
    EXPECT_EQ(answer.properties.height, 10);
    EXPECT_EQ(answer.properties.pixelWidth, 0.5);
    EXPECT_EQ(answer.properties.projectionCode, 32633);
    EXPECT_EQ(answer.properties.linearUnit, L"metre");
    EXPECT_EQ(answer.properties.extent, (std::array<double, 4>{500000, 5299995, 500010, 5300000}));
    EXPECT_TRUE(answer.properties.hasDetails);
    EXPECT_EQ(answer.properties.driver, L"GTiff");
    EXPECT_EQ(answer.properties.compression, L"DEFLATE");
    EXPECT_EQ(answer.properties.bandDetails.size(), 3U);
}

TEST_F(HostRasterInformationTest, AFileThatIsNoneIsRefusedWithTheReason) {
    const std::filesystem::path empty = folder_.Path() / "empty.tif";
    const std::ofstream made(empty);
    for (const std::wstring& path :
         {FromPath(empty), FromPath(folder_.Path() / "missing.tif"), FromPath(folder_.Path())}) {
        const Answer answer = Describe(path);
        EXPECT_EQ(answer.result, kHostFail) << ToUtf8(path);
        EXPECT_NE(answer.reason, L"") << ToUtf8(path);
        EXPECT_EQ(answer.properties.width, 0);
    }
}

// Through the object, or by the component itself: the row of the file is the same.
TEST_F(HostRasterInformationTest, TheComponentSeesThroughItWhatItWouldSeeByItself) {
    testing::GeoTiff tiff;
    tiff.change = [](GDALDatasetH dataset) { GDALSetRasterNoDataValue(GDALGetRasterBand(dataset, 1), -1); };
    const std::wstring path = tiff.Write(folder_, L"a.tif");
    const RasterProperties told = InspectRasterFile(path, RasterUse::Dem, maker_).properties;
    const RasterProperties read = Describe(path).properties;
    EXPECT_EQ(told.wkt, read.wkt);
    EXPECT_EQ(told.extent, read.extent);
    EXPECT_EQ(told.transform, read.transform);
    ASSERT_EQ(told.bandDetails.size(), 1U);
    EXPECT_EQ(told.bandDetails[0].nodata, -1);
    EXPECT_EQ(told.totalBytes, read.totalBytes);
}

TEST(RasterOfAHostWithoutTheClass, IsReadByTheComponentItself) {
    const testing::TemporaryFolder folder;
    const std::wstring path = testing::GeoTiff().Write(folder, L"a.tif");
    const RasterInformationMaker maker = MakeHostObjects()->RasterInformation();
    std::thread([&] {
        const RasterInspection inspection = InspectRasterFile(path, RasterUse::Image, maker);
        EXPECT_TRUE(inspection.loadable) << ToUtf8(inspection.summary);
        EXPECT_EQ(inspection.properties.width, 20);
        EXPECT_EQ(inspection.properties.driver, L"GTiff");
    }).join();
}

}  // namespace
}  // namespace orvex::host
