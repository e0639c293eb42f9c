#include "crs/GdalSetup.h"

#include <cpl_conv.h>
#include <gdal.h>
#include <gtest/gtest.h>

#include <filesystem>

#include "support/ModuleFolder.h"
#include "support/Text.h"
#include "support/testing/TemporaryFolder.h"

namespace orvex {
namespace {

constexpr auto kFailure = static_cast<std::int32_t>(0x80004005U);

std::string DataOption() {
    return CPLGetConfigOption("GDAL_DATA", "unset");
}

TEST(GdalSetup, NeedsDataPluginsAndTheTableOfProjectedSystems) {
    struct Case {
        const char* what;
        std::vector<const wchar_t*> files;
    };
    const std::string option = DataOption();
    const int drivers = GDALGetDriverCount();
    for (const Case& row : {
             Case{"nothing", {}},
             Case{"no plugins", {L"gdal-data/pcs.csv"}},
             Case{"no data", {L"gdalplugins/README.txt"}},
             Case{"no table", {L"gdal-data/gdalvrt.xsd", L"gdalplugins/README.txt"}},
             Case{"data is a file", {L"gdal-data", L"gdalplugins/README.txt"}},
             Case{"plugins is a file", {L"gdal-data/pcs.csv", L"gdalplugins"}},
         }) {
        const testing::TemporaryFolder folder;
        for (const wchar_t* file : row.files) {
            folder.Write(file, "x");
        }
        GdalSetup page;
        EXPECT_EQ(page.Run(folder.Path()), kFailure) << row.what;
        GdalSetup laterPage;
        EXPECT_EQ(laterPage.Run(folder.Path()), kFailure) << row.what;
        // The first outcome stands, even if the folder has been completed since.
        EXPECT_EQ(page.Run(ModuleFolder()), kFailure) << row.what;
    }
    EXPECT_EQ(DataOption(), option) << "GDAL is not touched";
    EXPECT_EQ(GDALGetDriverCount(), drivers);
}

TEST(GdalSetup, OfTheBuildFolder) {
    ASSERT_EQ(EnsureGdal(), 0);
    EXPECT_EQ(EnsureGdal(), 0);
    EXPECT_EQ(DataOption(), ToUtf8(FromPath(ModuleFolder() / "gdal-data")));
    EXPECT_NE(GDALGetDriverByName("GTiff"), nullptr);
    EXPECT_GT(std::filesystem::file_size(ModuleFolder() / "gdal-data" / "pcs.csv"), 100000U);
    GdalSetup page;
    EXPECT_EQ(page.Run(), 0);
}

TEST(GdalSetup, OfAMovedFolderWithAnUnusualName) {
    const testing::TemporaryFolder folder;
    folder.Write(L"größer als vorher/gdal-data/pcs.csv", "COORD_REF_SYS_CODE\n");
    folder.Write(L"größer als vorher/gdalplugins/README.txt", "");
    const std::filesystem::path moved = folder.Path() / ToPath(L"größer als vorher");
    GdalSetup page;
    EXPECT_EQ(page.Run(moved), 0);
    EXPECT_EQ(DataOption(), ToUtf8(FromPath(moved / "gdal-data")));
    GdalSetup().Run();
}

}  // namespace
}  // namespace orvex
