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
#include <string>
#include <thread>
#include <vector>

#include "orvexcommon/OrvexUtilities.h"
#include "support/Environment.h"
#include "support/GdalErrorScope.h"
#include "support/SpatialReference.h"
#include "support/Text.h"
#include "support/testing/TemporaryFolder.h"

namespace orvex {
namespace {

using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

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
    EXPECT_GE(folders.FindString(ToUtf8(FromPath(ModuleFolder() / "proj")).c_str()), 0);
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

TEST(GdalSetup, TheCacheKeepsTheSizeThatTheHostHasGivenIt) {
    const GIntBig memory = CPLGetUsablePhysicalRAM();
    const GIntBig before = GDALGetCacheMax64();
    struct Case {
        const char* what;
        GIntBig set;
        const char* option;
        GIntBig expected;
    };
    const GIntBig ofGdal = memory / 20;
    const GIntBig quarter = memory / 4;
    for (const Case& row :
         {Case{"nothing set", ofGdal, nullptr, quarter}, Case{"set by the host", 12345678, nullptr, 12345678},
          Case{"the option", ofGdal, "5%", ofGdal}, Case{"nothing set any more", ofGdal, nullptr, quarter}}) {
        CPLSetConfigOption("GDAL_CACHEMAX", row.option);
        GDALSetCacheMax64(row.set);
        for (int call = 0; call < 2; ++call) {
            EXPECT_TRUE(OrvexUtilities::SetGDALRasterCacheSize(0.25)) << row.what;
            EXPECT_NEAR(static_cast<double>(GDALGetCacheMax64()), static_cast<double>(row.expected), 2)
                << row.what;
        }
    }
    CPLSetConfigOption("GDAL_CACHEMAX", nullptr);
    GDALSetCacheMax64(before);
}

TEST(GdalSetup, ProjLooksFirstWhereTheHostHasSetIt) {
    const std::filesystem::path folder = ModuleFolder() / "proj";
    const std::string ours = ToUtf8(FromPath(folder));
    const auto folders = [] {
        const CPLStringList list(OSRGetPROJSearchPaths());
        return std::vector<std::string>(list.List(), list.List() + list.size());
    };
    const char* const grids[] = {"/the host's grids", nullptr};
    OSRSetPROJSearchPaths(grids);
    PreferProjData(folder);
    PreferProjData(folder);
    EXPECT_THAT(folders(), ElementsAre(grids[0], ours));
    OSRSetPROJSearchPaths(nullptr);
    PreferProjData(folder);
    PreferProjData(folder);
    EXPECT_THAT(folders(), Contains(ours).Times(1));
    EXPECT_EQ(folders().front(), ours) << "before PROJ's own";
}

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
