#include <gtest/gtest.h>

#include <chrono>
#include <filesystem>

#include "orvexcommon/OrvexUtilities.h"
#include "support/Text.h"
#include "support/testing/TemporaryFolder.h"

namespace orvex {
namespace {

TEST(LazFiles, BuddyPathsKeepFolderNameAndLetterCase) {
    struct Case {
        const wchar_t *path, *buddy;
        bool isLaz;
    };
    for (const Case& row : {
             Case{L"/data/a.laz", L"/data/a.las", true},
             Case{L"/data/A.LAZ", L"/data/A.LAS", true},
             Case{L"/data/a.Laz", L"/data/a.Las", true},
             Case{L"/data/a.laZ", L"/data/a.laS", true},
             Case{L"/data/a.las", L"/data/a.laz", false},
             Case{L"/data/a.LAS", L"/data/a.LAZ", false},
             Case{L"/data/x.copc.laz", L"/data/x.copc.las", true},
             Case{L"/da.laz/a", L"", false},
             Case{L"/data/a.laz.txt", L"", false},
             Case{L"", L"", false},
         }) {
        EXPECT_EQ(OrvexUtilities::GetLAZBuddyPath(row.path), row.buddy) << ToUtf8(row.path);
        EXPECT_EQ(OrvexUtilities::IsLAZFile(row.path), row.isLaz) << ToUtf8(row.path);
    }
}

TEST(LazFiles, AgesAreComparedToTheSecond) {
    const testing::TemporaryFolder folder;
    const std::wstring laz = folder.Write(L"a.laz", "x");
    EXPECT_TRUE(OrvexUtilities::IsLAZNewer(laz)) << "no buddy yet";
    EXPECT_FALSE(OrvexUtilities::LAZEnabledLASFileExists(laz));
    const std::wstring las = folder.Write(L"a.las", "x");
    EXPECT_TRUE(OrvexUtilities::LAZEnabledLASFileExists(laz));

    using namespace std::chrono_literals;
    const auto now = std::chrono::floor<std::chrono::seconds>(std::filesystem::file_time_type::clock::now());
    struct Case {
        std::chrono::milliseconds lazAge, lasAge;
        bool newer;
    };
    for (const Case& row : {Case{0s, 0s, false}, Case{900ms, 100ms, false}, Case{100ms, 900ms, false},
                            Case{2s, 0s, true}, Case{0s, 2s, false}}) {
        std::filesystem::last_write_time(ToPath(laz), now + row.lazAge);
        std::filesystem::last_write_time(ToPath(las), now + row.lasAge);
        EXPECT_EQ(OrvexUtilities::IsLAZNewer(laz), row.newer)
            << row.lazAge.count() << " " << row.lasAge.count();
    }
    EXPECT_FALSE(OrvexUtilities::IsLAZNewer(las)) << "not a LAZ file";
    EXPECT_FALSE(OrvexUtilities::IsLAZNewer(folder.Name(L"missing.laz")));
}

TEST(LazFiles, EnabledNeedsTheFileAndAPlaceForItsBuddy) {
    const testing::TemporaryFolder folder;
    EXPECT_TRUE(OrvexUtilities::IsLAZEnabled(folder.Write(L"a.laz", "x")));
    EXPECT_FALSE(OrvexUtilities::IsLAZEnabled(folder.Write(L"a.las", "x")));
    EXPECT_FALSE(OrvexUtilities::IsLAZEnabled(folder.Name(L"missing.laz")));
    std::filesystem::create_directory(ToPath(folder.Name(L"folder.laz")));
    EXPECT_FALSE(OrvexUtilities::IsLAZEnabled(folder.Name(L"folder.laz")));
}

}  // namespace
}  // namespace orvex
