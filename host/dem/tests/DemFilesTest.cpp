// What conversions leave in the folders they read from and write to.
#include <gdal_priv.h>
#include <gmock/gmock.h>

#include <thread>

#include "host/dem/tests/DemFixture.h"
#include "support/Files.h"
#include "support/Text.h"

namespace orvex {
namespace {

using testing::DemSample;
using testing::RecordingProgress;

class DemFilesTest : public testing::DemFixture {
  protected:
    std::vector<std::wstring> NamesIn(const std::wstring& name) const {
        std::vector<std::wstring> names;
        ListFolder(folder_.Name(name), [&names](const FolderEntry& entry) {
            names.push_back(FileNameOf(entry.path));
            return true;
        });
        return names;
    }
    /// Expects a failure that names the file and the cause, and no LAS file.
    void ExpectFailure(const std::wstring& path, const std::wstring& cause) const {
        const std::wstring text = FailureOf(path);
        EXPECT_NE(text.find(FileNameOf(path)), std::wstring::npos) << ToUtf8(text);
        EXPECT_NE(text.find(cause), std::wstring::npos) << ToUtf8(text);
        EXPECT_TRUE(NamesIn(L"out").empty());
    }
};

TEST_F(DemFilesTest, TakesTheNextFreeNameAndLeavesNothingBesideTheRaster) {
    folder_.Write(L"in/hill.v1/hdr.adf", "");
    EXPECT_EQ(FileNameOf(Convert(Write({}, L"in/hill.v1/hdr.adf")).lasPath), L"hill.v1.las")
        << "its folder's name";
    const std::wstring path = Write({}, L"in/hügel.v2.tif");
    folder_.Write(L"out/hügel.v2.las", "another's");
    EXPECT_EQ(FileNameOf(Convert(path).lasPath), L"hügel.v2 (2).las");
    EXPECT_EQ(FileNameOf(Convert(path).lasPath), L"hügel.v2 (3).las");
    options_.outputFolder += L"/";
    EXPECT_EQ(Convert(path).lasPath, folder_.Name(L"out/hügel.v2 (4).las"));
    EXPECT_EQ(testing::ReadFile(folder_.Name(L"out/hügel.v2.las")), "another's");
    EXPECT_THAT(NamesIn(L"in"), ::testing::UnorderedElementsAre(L".keep", L"hill.v1", L"hügel.v2.tif"));
    EXPECT_EQ(NamesIn(L"out").size(), 5U);
}

TEST_F(DemFilesTest, ConversionsAtTheSameTimeDoNotMeet) {
    constexpr int kThreads = 6;
    const std::wstring path = Write({});
    std::vector<std::thread> threads;
    threads.reserve(kThreads);
    for (int i = 0; i < kThreads; ++i) {
        threads.emplace_back([&] { EXPECT_EQ(Convert(path).points, 35U); });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    EXPECT_EQ(NamesIn(L"out").size(), std::size_t{kThreads});
}

TEST_F(DemFilesTest, AStopLeavesNothing) {
    DemSample sample;
    sample.width = 600;
    sample.height = 1800;
    sample.creationOptions = {{"TILED", "YES"}};
    const std::wstring path = Write(sample);
    for (const int stopAfter : {0, 1, 3}) {
        RecordingProgress progress;
        progress.stopAfter = stopAfter;
        EXPECT_EQ(ConvertDem(path, options_, progress), std::nullopt);
        EXPECT_EQ(progress.told, stopAfter);
        EXPECT_EQ(progress.total, 600U * 1800U);
        EXPECT_TRUE(NamesIn(L"out").empty());
    }
    RecordingProgress progress;
    EXPECT_NE(ConvertDem(path, options_, progress), std::nullopt);
    EXPECT_EQ(progress.position, progress.total);
    EXPECT_GT(progress.told, 4);
}

TEST_F(DemFilesTest, FailuresNameTheFileAndLeaveNothing) {
    DemSample noPlace;
    noPlace.transform.reset();
    DemSample flat;
    flat.transform = {{0, 1, 1, 0, 1, 1}};
    DemSample farAway;
    farAway.transform = {{1e300, 1e100, 0, 1e300, 0, -1e100}};
    DemSample endless;
    endless.scale = 1e307;
    DemSample complexNumbers;
    complexNumbers.type = GDT_CFloat32;
    DemSample noHeights;
    noHeights.value = [](int, int) { return -1.0; };
    noHeights.noData = -1;
    DemSample compressed;
    compressed.width = compressed.height = 300;
    compressed.creationOptions = {{"COMPRESS", "DEFLATE"}};
    const std::wstring cut = Write(compressed, L"in/cut.tif");
    const std::string bytes = testing::ReadFile(cut);
    folder_.Write(L"in/cut.tif", bytes.substr(0, bytes.size() / 2));
    folder_.Write(L"in/junk.tif", "no raster at all");
    DemSample block;  // 900 MB in one block, of which nothing is there
    block.width = block.height = 30000;
    block.type = GDT_Byte;
    block.value = nullptr;
    block.creationOptions = {
        {"TILED", "YES"}, {"BLOCKXSIZE", "30000"}, {"BLOCKYSIZE", "30000"}, {"SPARSE_OK", "TRUE"}};
    const struct {
        std::wstring path;
        const wchar_t* cause;
    } cases[] = {
        {Write(block, L"in/block.tif"), L"blocks of 900 MB"},
        {Write(noPlace, L"in/noplace.tif"), L"where on the ground"},
        {Write(flat, L"in/flat.tif"), L"where on the ground"},
        {Write(farAway, L"in/far.tif"), L"where on the ground"},
        {Write(endless, L"in/endless.tif"), L"holds no heights"},
        {Write(complexNumbers, L"in/complex.tif"), L"complex"},
        {Write(noHeights, L"in/noheights.tif"), L"holds no heights"},
        {cut, L""},
        {folder_.Name(L"in/junk.tif"), L"opened as a raster."},
        {folder_.Write(L"in/junk.ecw", "no raster at all"), L"ECW"},
        {folder_.Write(L"in/other.vrt", R"(<VRTDataset subClass="VRTWarpedDataset"/>)"),
         L"Choose those files"},
        {folder_.Name(L"in/missing.tif"), L"does not exist"},
    };
    for (const auto& failing : cases) {
        ExpectFailure(failing.path, failing.cause);
    }
    options_.thinning = 16;  // the heights may be among those left out
    ExpectFailure(folder_.Name(L"in/noheights.tif"), L"a thinning of 16");
}

TEST_F(DemFilesTest, WhatTheOptionsCannotTakeIsRefused) {
    const std::pair<int, int> laterFormats[] = {{0, 2}, {1, 3},  {2, 4}, {3, 6},
                                                {4, 9}, {4, -1}, {5, 0}, {-1, 0}};
    for (const auto& [minor, format] : laterFormats) {
        options_.versionMinor = minor;
        options_.pointFormat = format;
        EXPECT_FALSE(FailureOf(Write({})).empty()) << minor << " " << format;
    }
    options_.versionMinor = 2;
    options_.pointFormat = 0;
    // A raster of one value, described in a few bytes: more points than an old version can count.
    ExpectFailure(
        folder_.Write(
            L"large.vrt",
            R"(<VRTDataset rasterXSize="70000" rasterYSize="70000"><GeoTransform>0,1,0,0,0,-1</GeoTransform>)"
            R"(<VRTRasterBand dataType="Byte" band="1"/></VRTDataset>)"),
        L"4,294,967,295");
    folder_.Write(L"file", "in the way");
    options_.outputFolder = folder_.Name(L"file/out");
    EXPECT_NE(FailureOf(Write({})).find(L"out"), std::wstring::npos);
}

TEST_F(DemFilesTest, BlocksThatTheFileLeavesOutHoldNoHeights) {
    DemSample sparse;
    sparse.width = 40000;
    sparse.height = 40000;
    sparse.type = GDT_Byte;
    sparse.creationOptions = {{"TILED", "YES"}, {"SPARSE_OK", "TRUE"}, {"BIGTIFF", "NO"}};
    sparse.value = nullptr;
    const std::wstring path = Write(sparse);
    {
        const GDALDatasetUniquePtr dataset(GDALDataset::Open(ToUtf8(path).c_str(), GDAL_OF_UPDATE));
        std::vector<GByte> tile(std::size_t{256} * 256, 9);
        ASSERT_EQ(dataset->GetRasterBand(1)->RasterIO(GF_Write, 256, 512, 256, 256, tile.data(), 256, 256,
                                                      GDT_Byte, 0, 0, nullptr),
                  CE_None);
    }
    EXPECT_EQ(Convert(path).points, 256U * 256U);
}

}  // namespace
}  // namespace orvex
