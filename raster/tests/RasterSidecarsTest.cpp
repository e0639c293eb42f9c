#include "raster/RasterSidecars.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>

#include "raster/RasterReader.h"
#include "raster/testing/GeoTiff.h"
#include "support/Files.h"
#include "support/Text.h"
#include "support/testing/TemporaryFolder.h"

namespace orvex {
namespace {

using ::testing::ElementsAre;
using ::testing::SizeIs;
using testing::TemporaryFolder;

TEST(RasterSidecars, CountedWithTheirSizes) {
    const TemporaryFolder folder;
    testing::GeoTiff tiff;
    tiff.transform.reset();
    const std::wstring path = tiff.Write(folder, L"a.tif");
    const std::wstring world = folder.Write(L"a.tfw", "2\n0\n0\n-2\n1\n9\n");
    folder.Write(L"b.tfw", "1\n0\n0\n-1\n0\n0\n");
    const RasterProperties p = ReadRasterProperties(path);
    EXPECT_THAT(p.sidecars, ElementsAre(world));
    EXPECT_EQ(p.totalBytes, *FileSizeOf(path) + *FileSizeOf(world));
    EXPECT_EQ(p.pixelWidth, 2);
    const std::wstring relative = FromPath(std::filesystem::proximate(ToPath(path)));
    EXPECT_THAT(ReadRasterProperties(relative).sidecars, SizeIs(1)) << "and not the file itself";
}

TEST(RasterSidecars, AreFoundAmongManyFilesNamedAlike) {
    const TemporaryFolder folder;
    for (int i = 0; i < 200; ++i) {
        folder.Write(L"tile7" + std::to_wstring(i) + L".prj", "");
        folder.Write(L"tile7-" + std::to_wstring(i) + L".wld", "");
    }
    for (const char* const name : {"tile7.bmp", "tile7.tif"}) {
        const std::wstring path = folder.Name(FromUtf8(name));
        GDALDriverH memory = GDALGetDriverByName("MEM");
        const GdalDataset image(GDALCreate(memory, "", 1, 1, 1, GDT_Byte, nullptr));
        GDALDriverH driver = GDALGetDriverByName(path.ends_with(L"bmp") ? "BMP" : "GTiff");
        GdalDataset(
            GDALCreateCopy(driver, ToUtf8(path).c_str(), image.get(), FALSE, nullptr, nullptr, nullptr))
            .reset();
        folder.Write(L"tile7.wld", "2\n0\n0\n-2\n1\n9\n");
        folder.Write(FileNameOf(path) + L".aux.xml", "<PAMDataset><SRS>EPSG:32633</SRS></PAMDataset>");
        const RasterProperties properties = ReadRasterProperties(path);
        EXPECT_EQ(properties.pixelWidth, 2) << name;
        EXPECT_EQ(properties.projectionCode, 32633) << name;
    }
}

}  // namespace
}  // namespace orvex
