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

using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::IsSupersetOf;
using ::testing::Not;
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
    for (std::size_t i = 0; i < FolderListing::kMostWhole; ++i) {
        folder.Write(L"tile" + std::to_wstring(i) + L".tif", "");
    }
    for (const wchar_t* name : {L"tile7.tfw", L"TILE7.TIF.AUX.XML", L"tile7_rpc.txt", L"tile.tif", L"til"}) {
        folder.Write(name, "");
    }
    FolderListing listing(1);
    const auto names = Names(listing.Beside(folder.Name(L"tile7.tif")));
    EXPECT_THAT(names, IsSupersetOf({"tile7.tif", "tile7.tfw", "TILE7.TIF.AUX.XML", "tile7_rpc.txt"}));
    for (const char* name : {"tile8.tif", "tile.tif", "til"}) {
        EXPECT_THAT(names, Not(Contains(name)));
    }
    EXPECT_EQ(listing.Beside(folder.Name(L"absent/a.tif")), nullptr);
}

}  // namespace
}  // namespace orvex
