#include "raster/FolderListing.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <chrono>
#include <set>

#include "support/Text.h"
#include "support/testing/TemporaryFolder.h"

namespace orvex {
namespace {

using testing::TemporaryFolder;
using ::testing::UnorderedElementsAre;

std::set<std::string> Names(const GdalListPtr& list) {
    std::set<std::string> names;
    for (const char* const* name = list ? list->Get() : nullptr; name != nullptr && *name != nullptr;
         ++name) {
        names.insert(*name);
    }
    return names;
}

/// So that a folder that a test has just made counts as one that stays.
constexpr std::chrono::milliseconds kAtOnce{-1000};

TEST(FolderListing, AFolderIsListedOnceWhileItStays) {
    const TemporaryFolder folder;
    FolderListing listing(2, kAtOnce);
    const std::wstring path = folder.Write(L"a.tif", "");
    folder.Write(L"\u00e4.tfw", "");
    const GdalListPtr first = listing.Beside(path);
    EXPECT_THAT(Names(first), UnorderedElementsAre("a.tif", "\xc3\xa4.tfw"));
    EXPECT_EQ(listing.Beside(folder.Name(L"b.tif")), first);
}

TEST(FolderListing, AFolderThatChangesIsListedEachTime) {
    const TemporaryFolder folder;
    FolderListing listing(2);
    const std::wstring path = folder.Write(L"a.tif", "");
    EXPECT_EQ(Names(listing.Beside(path)).size(), 1U);
    for (std::size_t files = 2; files < 10; ++files) {
        folder.Write(std::to_wstring(files), "");
        EXPECT_EQ(Names(listing.Beside(path)).size(), files)
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

TEST(FolderListing, TheLatestFoldersAreKept) {
    const TemporaryFolder folders[3];
    FolderListing listing(2, kAtOnce);
    GdalListPtr first[3];
    for (int i = 0; i < 3; ++i) {
        folders[i].Write(L"a.tif", "");
        first[i] = listing.Beside(folders[i].Name(L"a.tif"));
    }
    EXPECT_EQ(listing.Beside(folders[1].Name(L"a.tif")), first[1]);
    EXPECT_EQ(listing.Beside(folders[2].Name(L"a.tif")), first[2]);
    EXPECT_NE(listing.Beside(folders[0].Name(L"a.tif")), first[0]);
}

TEST(FolderListing, OfManyFilesTheSidecars) {
    const TemporaryFolder folder;
    for (std::size_t i = 0; i < FolderListing::kMostWhole; ++i) {
        folder.Write(L"tile" + std::to_wstring(i) + L".tif", "");
    }
    for (const wchar_t* name : {L"tile7.tfw", L"TILE7.TIF.AUX.XML", L"tile7_rpc.txt", L"tile.tif", L"til"}) {
        folder.Write(name, "");
    }
    FolderListing listing(1);
    const auto names = Names(listing.Beside(folder.Name(L"tile7.tif")));
    for (const char* name : {"tile7.tif", "tile7.tfw", "TILE7.TIF.AUX.XML", "tile7_rpc.txt"}) {
        EXPECT_EQ(names.count(name), 1U) << name;
    }
    for (const char* name : {"tile8.tif", "tile.tif", "til"}) {
        EXPECT_EQ(names.count(name), 0U) << name;
    }
    EXPECT_EQ(listing.Beside(folder.Name(L"absent/a.tif")), nullptr);
}

}  // namespace
}  // namespace orvex
