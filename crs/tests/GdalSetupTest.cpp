#include "crs/GdalSetup.h"

#include <cpl_conv.h>
#include <cpl_error.h>
#include <cpl_string.h>
#include <gdal.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <ogr_spatialref.h>
#include <ogr_srs_api.h>

#include <filesystem>
#include <thread>

#include "support/Environment.h"
#include "support/GdalErrorScope.h"
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
    const CPLStringList folders(OSRGetPROJSearchPaths());
    ASSERT_GT(folders.size(), 0);
    EXPECT_EQ(folders[0], ToUtf8(FromPath(ModuleFolder() / "proj")));
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

using ::testing::ElementsAre;
using ::testing::IsEmpty;

void Report(const char* message, CPLErr severity = CE_Failure) {
    CPLError(severity, CPLE_AppDefined, "%s", message);
}

TEST(GdalErrorScope, CapturesWhatWouldReachTheConsole) {
    ::testing::internal::CaptureStderr();
    {
        const GdalErrorScope errors;
        EXPECT_EQ(errors.Text(), "");
        Report("a warning", CE_Warning);
        EXPECT_FALSE(errors.HasError());
        Report("a failure");
        EXPECT_TRUE(errors.HasError());
        EXPECT_EQ(errors.Text(), "a warning; a failure");
        OGRSpatialReference crs;
        crs.importFromWkt("PROJCS[\"broken\"");
        EXPECT_GT(errors.Messages().size(), 2U) << "PROJ's own errors";
        for (int i = 0; i < 10000; ++i) {
            Report(std::to_string(i).c_str(), CE_Warning);
        }
        EXPECT_EQ(errors.Messages().size(), 32U) << "a flood is bounded";
    }
    EXPECT_EQ(::testing::internal::GetCapturedStderr(), "");
    EXPECT_EQ(CPLGetLastErrorType(), CE_None) << "the next call starts clean";
}

TEST(GdalErrorScope, TheInnermostScopeOfTheThreadGetsTheMessage) {
    const GdalErrorScope outer;
    {
        const GdalErrorScope inner;
        Report("inner");
        EXPECT_THAT(inner.Messages(), ElementsAre("inner"));
    }
    EXPECT_THAT(outer.Messages(), IsEmpty());
    std::thread([] {
        const GdalErrorScope other;
        Report("other thread");
        EXPECT_THAT(other.Messages(), ElementsAre("other thread"));
    }).join();
    Report("outer");
    EXPECT_THAT(outer.Messages(), ElementsAre("outer"));
}

}  // namespace
}  // namespace orvex
