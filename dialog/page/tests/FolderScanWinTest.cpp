#include <gmock/gmock.h>

#include <algorithm>
#include <fstream>

#include "dialog/page/tests/ScanFixture.h"
#include "support/Files.h"

namespace orvex {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

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

}  // namespace
}  // namespace orvex
