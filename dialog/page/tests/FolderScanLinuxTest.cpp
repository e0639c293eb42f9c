#include <gmock/gmock.h>
#include <unistd.h>

#include "dialog/page/tests/ScanFixture.h"

namespace orvex {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
namespace fs = std::filesystem;

TEST_F(Scanning, ListsAFolderOnceHoweverItIsLinked) {
    fs::create_directory_symlink(folder.Path(), folder.Path() / "sub" / "up");
    fs::create_directory_symlink(folder.Path() / "sub" / "deep", folder.Path() / "again");
    fs::create_symlink(folder.Path() / "nowhere", folder.Path() / "dangling.las");
    const ScanResult result = Scan(true);
    EXPECT_EQ(result.files.size(), 4U);
    EXPECT_THAT(result.unreadable, IsEmpty());
}

TEST_F(Scanning, ReportsFoldersThatCannotBeRead) {
    fs::permissions(folder.Path() / "sub", fs::perms::none);
    // Root reads everything, so it steps down for the scan.
    const bool root = ::geteuid() == 0;
    ASSERT_TRUE(!root || ::seteuid(65534) == 0);
    const ScanResult result = Scan(true);
    ASSERT_TRUE(!root || ::seteuid(0) == 0);
    fs::permissions(folder.Path() / "sub", fs::perms::owner_all);
    EXPECT_THAT(result.unreadable, ElementsAre(folder.Name(L"sub")));
    EXPECT_THAT(Names(result), ElementsAre(L"b2.LAS", L"b10.las"));
}

}  // namespace
}  // namespace orvex
