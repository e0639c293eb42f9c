#include "support/FolderListing.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <chrono>

#include "support/Text.h"
#include "support/testing/TemporaryFolder.h"

namespace orvex {
namespace {

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

}  // namespace
}  // namespace orvex
