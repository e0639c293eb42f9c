#include "raster/RasterSidecars.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <chrono>
#include <filesystem>

#include "raster/RasterReader.h"
#include "raster/testing/GeoTiff.h"
#include "support/Text.h"
#include "support/testing/TemporaryFolder.h"

namespace orvex {
namespace {

using ::testing::ElementsAre;
using ::testing::SizeIs;
using testing::TemporaryFolder;
using ::testing::UnorderedElementsAre;

std::vector<std::string> Names(const GdalListPtr& list) {
    std::vector<std::string> names;
    for (const char* const* name = list ? list->Get() : nullptr; name != nullptr && *name != nullptr;
         ++name) {
        names.emplace_back(*name);
    }
    return names;
}

/// A folder that a test has just made then counts as one that does not change any more.
constexpr std::chrono::milliseconds kAtOnce{-1000};

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

TEST(FolderListing, ListsAFolderAgainOnlyWhenItChanges) {
    const TemporaryFolder folder;
    const std::wstring path = folder.Write(L"a.tif", "");
    folder.Write(L"\u00e4.tfw", "");
    FolderListing listing(2, kAtOnce);
    const GdalListPtr first = listing.Beside(path);
    EXPECT_THAT(Names(first), UnorderedElementsAre("a.tif", "\xc3\xa4.tfw"));
    EXPECT_EQ(listing.Beside(folder.Name(L"b.tif")), first);

    FolderListing careful(2);
    for (std::size_t files = 3; files < 10; ++files) {
        folder.Write(std::to_wstring(files), "");
        EXPECT_THAT(Names(careful.Beside(path)), SizeIs(files))
            << "perhaps within one step of the folder's time";
    }
}

TEST(FolderListing, ATimeOfWholeSecondsIsTrustedLater) {
    using namespace std::chrono_literals;
    const FileTime whole = std::chrono::floor<std::chrono::seconds>(std::chrono::system_clock::now());
    const FileTime fine = whole + 1ms;
    EXPECT_FALSE(FolderListing::HasSettled(fine, fine + 10ms));
    EXPECT_TRUE(FolderListing::HasSettled(fine, fine + 100ms));
    EXPECT_FALSE(FolderListing::HasSettled(whole, whole + 2s));
    EXPECT_TRUE(FolderListing::HasSettled(whole, whole + 4s));
    EXPECT_TRUE(FolderListing::HasSettled(whole, whole - 1s)) << "a server's clock that is ahead";
}

TEST(FolderListing, OfManyFilesOnlyTheSidecars) {
    const TemporaryFolder folder;
    for (std::size_t i = 0; i < 2 * FolderListing::kMostWhole; ++i) {
        // Before and behind the sidecars, and all named like the raster.
        folder.Write(L"tile7" + std::to_wstring(i) + L".tif", "");
        folder.Write(L"tile7-" + std::to_wstring(i) + L".tif", "");
        folder.Write(L"tile7_" + std::to_wstring(i) + L".tfw", "");
        folder.Write(L"w" + std::to_wstring(i) + L".adf", "");
    }
    for (const wchar_t* name :
         {L"tile7.tif", L"tile7.tfw", L"TILE7.TIF.AUX.XML", L"tile7_rpc.txt", L"tile.tif"}) {
        folder.Write(name, "");
    }
    FolderListing listing(1);
    EXPECT_THAT(Names(listing.Beside(folder.Name(L"tile7.tif"))),
                UnorderedElementsAre("tile7.tif", "tile7.tfw", "TILE7.TIF.AUX.XML", "tile7_rpc.txt"));
    EXPECT_THAT(Names(listing.Beside(folder.Name(L"w1.adf"))), SizeIs(2 * FolderListing::kMostWhole))
        << "the files of a coverage";
    EXPECT_EQ(listing.Beside(folder.Name(L"absent/a.tif")), nullptr);
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
