#include "host/app/RasterJobs.h"

#include <gmock/gmock.h>

#include <QWidget>
#include <algorithm>

#include "host/app/HostText.h"
#include "host/app/RecordIntake.h"
#include "host/app/tests/TestRasters.h"
#include "host/dem/testing/DemSamples.h"
#include "orvexcommon/AddFilesParams.h"
#include "orvexcommon/RasterFileInfo.h"
#include "support/Files.h"
#include "support/Text.h"
#include "support/testing/Scripted.h"
#include "support/testing/TemporaryFolder.h"

namespace orvex {
namespace {

using testing::DemSample;
using testing::TemporaryFolder;
using testing::TestRaster;

/// Stops at a position.
struct Steps final : testing::RecordingProgress {
    std::uint64_t stopAt = UINT64_MAX;

    bool IsCancelled() override { return position >= stopAt; }
};

std::wstring Large(const TemporaryFolder& folder, const std::wstring& name, bool withPalette = false) {
    std::vector<double> values(std::size_t{2000} * 1100);
    for (std::size_t i = 0; i < values.size(); ++i) {
        values[i] = i % 2 == 0 ? 10 : 30;
    }
    const TestRaster raster(2000, 1100, GDT_Byte, values);
    GDALColorTable colours;
    for (int i = 0; withPalette && i < 40; ++i) {
        const GDALColorEntry grey{static_cast<short>(i), 0, 0, 255};
        colours.SetColorEntry(i, &grey);
    }
    if (withPalette) {
        raster.Band(1).SetColorTable(&colours);
    }
    raster.Band(1).SetNoDataValue(0);
    return raster.Save(folder, name);
}

/// Widths of the overviews, and a pixel of the first.
std::pair<std::vector<int>, int> OverviewsOf(const std::wstring& path) {
    const GDALDatasetUniquePtr dataset(GDALDataset::Open(ToUtf8(path).c_str()));
    GDALRasterBand* band = dataset->GetRasterBand(1);
    std::vector<int> widths;
    widths.reserve(static_cast<std::size_t>(band->GetOverviewCount()));
    for (int i = 0; i < band->GetOverviewCount(); ++i) {
        widths.push_back(band->GetOverview(i)->GetXSize());
    }
    std::uint8_t pixel = 0;
    EXPECT_EQ(band->GetOverview(0)->RasterIO(GF_Read, 5, 5, 1, 1, &pixel, 1, 1, GDT_Byte, 0, 0), CE_None);
    return {widths, pixel};
}

TEST(Overviews, LieBesideTheRasterWhichStaysAsItWas) {
    const TemporaryFolder folder;
    const std::wstring grey = Large(folder, L"Gr\u00F6\u00DFe 1.tif");
    const std::wstring map = Large(folder, L"map.tif", true);
    const std::wstring small =
        TestRaster(10, 10, GDT_Byte, std::vector<double>(100, 1)).Save(folder, L"small.tif");
    const std::string before = testing::ReadFile(grey);
    Steps steps;
    const auto result = BuildOverviews({grey, small, map}, steps);
    EXPECT_EQ(result.built, 2U);
    EXPECT_EQ(result.notNeeded, 1U);
    EXPECT_TRUE(result.failures.empty());
    EXPECT_EQ(testing::ReadFile(grey), before);
    EXPECT_EQ(OverviewsOf(grey), std::pair(std::vector{1000, 500, 250}, 20)) << "averaged";
    EXPECT_THAT(OverviewsOf(map).second, ::testing::AnyOf(10, 30))
        << "an average of colour numbers means nothing";
    EXPECT_EQ(folder.Entries(), 5U) << "three rasters and two files of levels";
    EXPECT_EQ(steps.total, 3000U);
    EXPECT_EQ(BuildOverviews({grey}, steps).notNeeded, 1U);
}

TEST(Overviews, OneFailureLeavesTheOthersAndLosesNothing) {
    const TemporaryFolder folder;
    const std::wstring bad = folder.Write(L"bad.tif", "no raster");
    const std::wstring taken = Large(folder, L"taken.tif");
    folder.Write(L"taken.tif.ovr", "somebody's own file");
    const std::wstring good = Large(folder, L"good.tif");
    Steps steps;
    const auto result = BuildOverviews({bad, taken, good}, steps);
    EXPECT_EQ(result.built, 1U);
    ASSERT_EQ(result.failures.size(), 2U);
    EXPECT_EQ(result.failures[0].path, bad);
    EXPECT_NE(result.failures[1].cause.find(L"taken.tif.ovr"), std::wstring::npos);
    EXPECT_EQ(testing::ReadFile(folder.Name(L"taken.tif.ovr")), "somebody's own file");
    EXPECT_EQ(folder.Entries(), 5U);
}

TEST(Overviews, StoppingLeavesNothingHalfMade) {
    const TemporaryFolder folder;
    const std::wstring first = Large(folder, L"1.tif");
    const std::wstring second = Large(folder, L"2.tif");
    Steps steps;
    steps.stopAt = 1300;
    const auto result = BuildOverviews({first, second}, steps);
    EXPECT_TRUE(result.stopped);
    EXPECT_EQ(result.built, 1U);
    EXPECT_TRUE(FileExists(first + L".ovr"));
    EXPECT_EQ(folder.Entries(), 3U);
}

TEST(Overviews, WhateverTheCoordinateSystemIs) {
    const TemporaryFolder folder;
    const TestRaster raster(1100, 2, GDT_Byte, std::vector<double>(2200, 7));
    OGRSpatialReference ellipsoidal;
    ASSERT_EQ(ellipsoidal.importFromEPSG(4979), OGRERR_NONE);
    GDAL_GCP points[4] = {};
    GDALInitGCPs(4, points);
    for (int i = 0; i < 4; ++i) {
        points[i].dfGCPPixel = points[i].dfGCPX = i % 2;
        points[i].dfGCPLine = points[i].dfGCPY = i < 2 ? 0 : 1;
    }
    raster->SetGCPs(4, points, &ellipsoidal);
    GDALDeinitGCPs(4, points);
    Steps steps;
    const auto result = BuildOverviews({raster.Save(folder, L"points.tif")}, steps);
    EXPECT_EQ(result.built, 1U);
    EXPECT_TRUE(result.failures.empty()) << ToUtf8(result.failures.front().cause);
}

TEST(RecordIntake, LeavesOutUndescribedRastersAndWritesBesideDataOnlyWhereItMay) {
    struct Details final : RasterFileInfo {
        std::wstring path;
        RasterProperties properties;
        const std::wstring& FileName() const override { return path; }
        const RasterProperties& Properties() const override { return properties; }
        bool IsBigTiff() const override { return false; }
    };
    const TemporaryFolder folder;
    Details details;
    details.path = Large(folder, L"a.tif");
    folder.Write(L"bad.tif", "no raster");
    AddFilesParams record;
    record.rasterFiles[FolderOf(details.path)] = {L"a.tif", L"bad.tif"};
    record.rasterFileDetails[details.path] = &details;
    record.rasterPyramid = true;
    QWidget window;
    for (const bool mayWrite : {false, true}) {
        Project project;
        const IntakeResult result = RecordIntake(project, {}, mayWrite, &window).Take(record);
        EXPECT_EQ(result.places, (FilePlaces{{0, 0}}));
        EXPECT_EQ(folder.Entries(), mayWrite ? 3U : 2U);
        ASSERT_EQ(result.report.size(), 1U);
        EXPECT_THAT(result.report[0].lines, ::testing::ElementsAre(folder.Name(L"bad.tif")));
        EXPECT_TRUE(result.news.empty()) << "the dialog has told";
        EXPECT_TRUE(result.status.contains(HostText(text::kAddedOf, {1, 2}))) << result.status.toStdString();
    }
}

class DemImportTest : public ::testing::Test {
  protected:
    DemImportTest() {
        options_.outputFolder = folder_.Name(L"out");
        options_.versionMinor = 2;
        options_.pointFormat = 1;
    }

    AssignedFile Dem(const std::wstring& name, int width = 7, int height = 5) {
        DemSample sample;
        sample.width = width;
        sample.height = height;
        sample.crs = "EPSG:25832";
        EXPECT_TRUE(testing::WriteDem(folder_.Name(name), sample));
        return {folder_.Name(name), L"layer of " + name};
    }

    TemporaryFolder folder_;
    DemConversionOptions options_;
    Steps progress_;
};

TEST_F(DemImportTest, FilesBecomeFilesOfTheirLayersAndAFailureIsNoEnd) {
    const AssignedFile bad{folder_.Write(L"bad.tif", "no raster"), L"x"};
    DemImport import({Dem(L"a.tif"), bad, Dem(L"b.tif", 3, 2)}, options_, false);
    import.Run(progress_);
    const DemImportResult result = import.Result();
    EXPECT_FALSE(result.stopped);
    ASSERT_EQ(result.files.size(), 2U);
    EXPECT_EQ(result.files[0].layer, L"layer of a.tif");
    const LayerFile& file = result.files[0].file;
    EXPECT_EQ(FileNameOf(file.path), L"a.las");
    EXPECT_TRUE(FileExists(file.path));
    EXPECT_EQ(file.points, 35U);
    EXPECT_EQ(file.version, 12);
    EXPECT_EQ(file.pointFormat, 1);
    EXPECT_FALSE(file.readOnly);
    EXPECT_EQ(file.min[2], 100);
    EXPECT_LT(file.min[0], file.max[0]);
    EXPECT_FALSE(result.files[0].wkt.empty());
    EXPECT_EQ(result.files[1].file.points, 6U);
    ASSERT_EQ(result.failures.size(), 1U);
    EXPECT_EQ(result.failures[0].path, bad.path);
    EXPECT_FALSE(result.failures[0].cause.empty());
    EXPECT_EQ(progress_.total, 3000U);
}

TEST_F(DemImportTest, StoppingInTheMiddleKeepsWhatIsComplete) {
    progress_.stopAt = 1001;
    DemImport import({Dem(L"a.tif"), Dem(L"b.tif", 600, 900), Dem(L"c.tif")}, options_, true);
    import.Run(progress_);
    const DemImportResult result = import.Result();
    EXPECT_TRUE(result.stopped);
    ASSERT_EQ(result.files.size(), 1U);
    EXPECT_TRUE(result.files[0].file.readOnly);
    EXPECT_TRUE(result.failures.empty());
    std::size_t written = 0;
    EXPECT_EQ(ListFolder(options_.outputFolder, [&written](const FolderEntry&) { return ++written > 0; }), 0);
    EXPECT_EQ(written, 1U) << "something half made was left";
}

}  // namespace
}  // namespace orvex
