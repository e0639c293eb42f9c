#include "crs/GdalSetup.h"

#include <cpl_conv.h>
#include <gdal.h>
#include <gtest/gtest.h>

#include <filesystem>

#include "support/Environment.h"
#include "support/Text.h"
#include "support/testing/TemporaryFolder.h"

namespace orvex {
namespace {

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
        EXPECT_FALSE(page.Run(folder.Path())) << row.what;
        EXPECT_FALSE(page.Run(ModuleFolder())) << "the first outcome stands: " << row.what;
    }
    EXPECT_EQ(DataOption(), option) << "GDAL is not touched";
    EXPECT_EQ(GDALGetDriverCount(), drivers);
}

TEST(GdalSetup, OfTheBuildFolderAndOfAMovedOne) {
    EXPECT_TRUE(EnsureGdal());
    EXPECT_EQ(DataOption(), ToUtf8(FromPath(ModuleFolder() / "gdal-data")));
    EXPECT_NE(GDALGetDriverByName("GTiff"), nullptr);
    EXPECT_GT(std::filesystem::file_size(ModuleFolder() / "gdal-data" / "pcs.csv"), 100000U);

    const testing::TemporaryFolder folder;
    folder.Write(L"größer als vorher/gdal-data/pcs.csv", "COORD_REF_SYS_CODE\n");
    folder.Write(L"größer als vorher/gdalplugins/README.txt", "");
    const std::filesystem::path moved = folder.Path() / ToPath(L"größer als vorher");
    EXPECT_TRUE(GdalSetup().Run(moved));
    EXPECT_EQ(DataOption(), ToUtf8(FromPath(moved / "gdal-data")));
    EXPECT_TRUE(GdalSetup().Run());
    EXPECT_EQ(DataOption(), ToUtf8(FromPath(ModuleFolder() / "gdal-data")));
}

}  // namespace
}  // namespace orvex
