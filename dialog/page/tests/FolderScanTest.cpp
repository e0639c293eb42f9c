#include "dialog/page/FolderScan.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>

#include "support/Files.h"
#include "support/NaturalOrder.h"
#include "support/Text.h"
#include "support/testing/TemporaryFolder.h"

#ifndef _WIN32
#include <unistd.h>
#endif

namespace orvex {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

/// A folder with files at three depths.
class Scanning : public ::testing::Test {
  protected:
    Scanning() {
        for (const wchar_t* name :
             {L"b10.las", L"b2.LAS", L"a.laz", L"notes.txt", L"sub/c.las", L"sub/deep/d.las"}) {
            folder.Write(name, "x");
        }
    }
    std::vector<std::wstring> Names(const ScanResult& result) const {
        std::vector<std::wstring> names;
        const std::wstring top = folder.Name(L"");
        for (const std::wstring& path : result.files) {
            names.push_back(path.starts_with(top) ? path.substr(top.size()) : path);
        }
        return names;
    }
    /// The name of a file in the subfolder, relative to the top, with the system's separators.
    static std::wstring Sub(const std::wstring& name) {
        return FromPath(ToPath(L"sub/" + name).make_preferred());
    }
    ScanResult Scan(bool recursive, std::vector<std::wstring> extensions = {L".LAS"}) const {
        return ScanPaths({{FromPath(folder.Path())}, std::move(extensions), recursive}, {});
    }
    testing::TemporaryFolder folder;
};

TEST(NaturalOrder, IsHowAPersonLists) {
    const std::wstring ordered[] = {L"",
                                    L"/a/Z.las",
                                    L"/a b/a.las",
                                    L"tile",
                                    L"tile1",
                                    L"tile002",
                                    L"tile2b",
                                    L"tile10",
                                    L"tile99999999999999999999",
                                    L"tile100000000000000000000"};
    for (std::size_t i = 0; i + 1 < std::size(ordered); ++i) {
        EXPECT_TRUE(NaturalLess(ordered[i], ordered[i + 1])) << ToUtf8(ordered[i + 1]);
        EXPECT_FALSE(NaturalLess(ordered[i + 1], ordered[i])) << ToUtf8(ordered[i + 1]);
    }
    EXPECT_NE(NaturalLess(L"tile2", L"tile002"), NaturalLess(L"tile002", L"tile2"));
    EXPECT_FALSE(NaturalLess(L"same", L"same"));
}

TEST_F(Scanning, FindsByExtensionInNaturalOrder) {
    EXPECT_THAT(Names(Scan(false)), ElementsAre(L"b2.LAS", L"b10.las"));
    EXPECT_THAT(Names(Scan(true)), ElementsAre(L"b2.LAS", L"b10.las", Sub(L"c.las"), Sub(L"deep/d.las")));
    EXPECT_THAT(Names(Scan(false, {L".LAS", L".LAZ"})), ElementsAre(L"a.laz", L"b2.LAS", L"b10.las"));
    EXPECT_THAT(Scan(true, {}).files, IsEmpty());
}

TEST_F(Scanning, TakesNamedFilesInTheOrderGivenAndCountsOthers) {
    const ScanResult result = ScanPaths(
        {{folder.Name(L"b10.las"), folder.Name(L"notes.txt"), folder.Name(L"sub"), folder.Name(L"b2.LAS")},
         {L".LAS"},
         true},
        {});
    EXPECT_THAT(Names(result), ElementsAre(L"b10.las", Sub(L"c.las"), Sub(L"deep/d.las"), L"b2.LAS"));
    EXPECT_THAT(result.ignored, ::testing::SizeIs(1));
}

TEST_F(Scanning, AFolderIsTheFileThatStandsForIt) {
    const std::wstring hill = folder.Write(L"hill/hdr.adf", "x");
    folder.Write(L"hill/a.las", "x");
    for (const std::wstring& named : {hill, FolderOf(hill)}) {
        EXPECT_THAT(ScanPaths({{named}, {L".TIF", L"HDR.ADF"}, true}, {}).files, ElementsAre(hill));
    }
    EXPECT_THAT(ScanPaths({{FolderOf(hill)}, {L".LAS"}, true}, {}).files,
                ElementsAre(folder.Name(L"hill/a.las")));
}

TEST_F(Scanning, StopsWhenAsked) {
    std::stop_source stop;
    stop.request_stop();
    EXPECT_TRUE(ScanPaths({{FromPath(folder.Path())}, {L".LAS"}, true}, stop.get_token()).stopped);
}

TEST(ScanMessages, AStoppedSearchIsSilentButForFoldersThatCouldNotBeRead) {
    EXPECT_FALSE(ScanPrompt({.ignored = {L"a", L"b"}, .stopped = true}, {}).has_value());
    const std::optional<Prompt> prompt = ScanPrompt(
        {.files = {L"a.las"}, .unreadable = {L"/secret"}, .ignored = {L"a", L"b"}, .stopped = true}, {});
    ASSERT_TRUE(prompt.has_value());
    EXPECT_EQ(prompt->text, Text(text::kFoldersNotSearched) + L"\n\n/secret");
    EXPECT_EQ(prompt->icon, PromptIcon::Error);
}

#ifdef _WIN32

TEST_F(Scanning, GivesNativeNamesHoweverTheFolderIsWritten) {
    std::wstring top = FromPath(folder.Path());
    std::ranges::replace(top, L'\\', L'/');
    const ScanResult result = ScanPaths({{top + L"/"}, {L".LAS"}, true}, {});
    EXPECT_THAT(Names(result), ElementsAre(L"b2.LAS", L"b10.las", L"sub\\c.las", L"sub\\deep\\d.las"));
}

TEST_F(Scanning, FindsFilesWhosePathsAreLongerThanWindowsOnceAllowed) {
    std::wstring deep = folder.Name(L"sub");
    while (deep.size() < 400) {
        deep += L"\\" + std::wstring(50, L'x');
    }
    ASSERT_EQ(CreateFolders(deep), 0);
    const std::wstring file = deep + L"\\long.las";
    std::ofstream(ToPath(file)) << "x";
    const ScanResult result = Scan(true);
    EXPECT_THAT(result.files, ::testing::Contains(file));
    EXPECT_THAT(result.unreadable, IsEmpty());
    EXPECT_EQ(result.files.size(), 5U);
}

#else

TEST_F(Scanning, ListsAFolderOnceHoweverItIsLinked) {
    std::filesystem::create_directory_symlink(folder.Path(), folder.Path() / "sub" / "up");
    std::filesystem::create_directory_symlink(folder.Path() / "sub" / "deep", folder.Path() / "again");
    std::filesystem::create_symlink(folder.Path() / "nowhere", folder.Path() / "dangling.las");
    const ScanResult result = Scan(true);
    EXPECT_EQ(result.files.size(), 4U);
    EXPECT_THAT(result.unreadable, IsEmpty());
}

TEST_F(Scanning, ReportsFoldersThatCannotBeRead) {
    using std::filesystem::perms;
    const perms namesOnly = perms::owner_read | perms::group_read | perms::others_read;
    for (const perms allowed : {perms::none, namesOnly}) {
        std::filesystem::permissions(folder.Path() / "sub", allowed);
        // Root reads everything, so it steps down for the scan.
        const bool root = ::geteuid() == 0;
        ASSERT_TRUE(!root || ::seteuid(65534) == 0);
        const ScanResult result = Scan(true);
        ASSERT_TRUE(!root || ::seteuid(0) == 0);
        std::filesystem::permissions(folder.Path() / "sub", perms::owner_all);
        EXPECT_THAT(result.unreadable, ElementsAre(folder.Name(L"sub")));
        EXPECT_THAT(Names(result), ElementsAre(L"b2.LAS", L"b10.las"));
    }
}

#endif

}  // namespace
}  // namespace orvex
