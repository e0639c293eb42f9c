#include "host/app/RecordFiles.h"

#include <gmock/gmock.h>

#include "host/app/tests/TestRecord.h"
#include "support/Text.h"
#include "support/testing/TemporaryFolder.h"

namespace orvex {
namespace {

using ::testing::ElementsAre;
using testing::kDegrees;
using ::testing::Key;
using testing::kUtm;
using testing::Record;
using testing::TemporaryFolder;

std::vector<std::wstring> PathsOf(const Layer& layer) {
    std::vector<std::wstring> paths;
    for (const LayerFile& file : layer.files) {
        paths.push_back(file.path);
    }
    return paths;
}

TEST(RecordFiles, LasFilesGoToTheLayersTheyWereAssignedTo) {
    Project project;
    project.layers = {{L"old", kUtm, {{NativePath(L"/p/there.las"), {}}}}};
    Record record;
    record.AddFile(NativePath(L"/a"), L"1.las", L"old");
    record.AddFile(NativePath(L"/a"), L"2.las", L"LAS Layer_1", kDegrees).high = {5, 6, 7};
    record.AddFile(NativePath(L"/b/"), L"3.las", L"LAS Layer_1", kDegrees).readOnly = false;
    record.AddFile(NativePath(L"/b"), L"skipped.las", L"LAS Layer_2");
    record.lasLoadSetting = true;
    const AddedFiles added =
        project.Take(LayerKind::Las, LasFilesOf(record, {{NativePath(L"/b/skipped.las"), L"why"}}));
    EXPECT_EQ(added.places, (FilePlaces{{0, 1}, {1, 0}, {1, 1}}));
    EXPECT_EQ(added.mainLayer, 1U);
    ASSERT_EQ(project.layers.size(), 2U);
    EXPECT_EQ(project.layers[0].files.size(), 2U);
    const Layer& layer = project.layers[1];
    EXPECT_EQ(layer.name, L"LAS Layer_1");
    EXPECT_EQ(layer.wkt, kDegrees);
    ASSERT_THAT(PathsOf(layer), ElementsAre(NativePath(L"/a/2.las"), NativePath(L"/b/3.las")));
    EXPECT_EQ(layer.files[0].max[2], 7);
    EXPECT_TRUE(layer.files[0].readOnly);
    EXPECT_TRUE(layer.files[0].footprintOnly);
    EXPECT_FALSE(layer.files[1].readOnly);
    EXPECT_EQ(project.LayersForDialog(LayerKind::Las).at(L"old"), FromUtf8(kUtm));
}

TEST(RecordFiles, RastersGoToLayersOfTheirOwnKind) {
    Project project;
    project.layers = {{L"same name", kUtm, {{L"/p/there.las", {}}}},
                      {L"same name", kUtm, {{NativePath(L"/a/THERE.tif"), {}}}, LayerKind::Raster}};
    Record record;
    RasterProperties& first = record.AddRaster(NativePath(L"/a"), L"2.tif", L"same name").properties;
    first.width = 40;
    first.transform = {{1, 2, 3, 4, 5, 6}};
    record.AddRaster(NativePath(L"/a"), L"1.tif", L"same name");
    record.AddRaster(NativePath(L"/a"), L"there.tif", L"same name");
    record.AddRaster(NativePath(L"/b"), L"3.tif", L"Raster Layer_2").properties.wkt = std::string(kDegrees);
    record.rasterFiles[NativePath(L"/b")].push_back(L"undescribed.tif");
    EXPECT_THAT(UndescribedRastersOf(record), ElementsAre(NativePath(L"/b/undescribed.tif")));
    const AddedFiles added = project.Take(LayerKind::Raster, RasterFilesOf(record));
    EXPECT_EQ(added.places, (FilePlaces{{1, 1}, {1, 2}, {2, 0}}));
    EXPECT_THAT(added.others, ElementsAre(NativePath(L"/a/there.tif")));
    EXPECT_EQ(added.mainLayer, 1U);
    ASSERT_EQ(project.layers.size(), 3U);
    EXPECT_EQ(project.layers[0].files.size(), 1U);
    ASSERT_THAT(PathsOf(project.layers[1]),
                ElementsAre(NativePath(L"/a/THERE.tif"), NativePath(L"/a/2.tif"), NativePath(L"/a/1.tif")))
        << "the order of the record";
    EXPECT_EQ(project.layers[1].files[1].raster.width, 40);
    EXPECT_EQ(project.layers[1].files[1].raster.transform, first.transform);
    EXPECT_EQ(project.layers[2].kind, LayerKind::Raster);
    EXPECT_EQ(project.layers[2].wkt, kDegrees);
    EXPECT_EQ(project.LayersForDialog(LayerKind::Raster).size(), 2U);
    EXPECT_EQ(project.LayersForDialog(LayerKind::Las).size(), 1U);
}

TEST(CheckLidar, FilesWithErrorsAreLeftOutUnlessTheBoxIsChecked) {
    const TemporaryFolder files;
    Record record;
    for (const wchar_t* name : {L"good.las", L"cut.las"}) {
        files.Write(name, "content");
        record.AddFile(FromPath(files.Path()), name, L"new").damaged = name[0] == L'c';
    }
    const LidarReport careful = CheckLidar(Project(), record, {});
    EXPECT_THAT(careful.leftOut, ElementsAre(Key(JoinPath(FromPath(files.Path()), L"cut.las"))));
    EXPECT_FALSE(careful.nothingLeft);
    EXPECT_EQ(LasFilesOf(record, careful.leftOut).size(), 1U);
    record.lasLoadCorruptFiles = true;
    const LidarReport bold = CheckLidar(Project(), record, {});
    EXPECT_TRUE(bold.leftOut.empty());
}

TEST(CheckLidar, ReportsEachFindingByItself) {
    const TemporaryFolder files;
    const std::wstring folder = FromPath(files.Path());
    for (const wchar_t* name : {L"1.las", L"2.las", L"there.las"}) {
        files.Write(name, "content");
    }
    Project project;
    project.layers = {{L"old", kUtm, {{JoinPath(folder, L"THERE.las"), {}}}}};
    struct Case {
        const char* what;
        const wchar_t* name;  ///< a second file, beside one of the layer "new" with kUtm
        const wchar_t* layer;
        const char* wkt;
        double west;
        bool LidarReport::*finding;  ///< the only one; null for none
    };
    for (const Case& c : {
             Case{"files that fit", L"2.las", L"new", kUtm, 0, nullptr},
             Case{"appending", L"2.las", L"old", kUtm, 0, &LidarReport::appending},
             Case{"another CRS than its new layer", L"2.las", L"new", kDegrees, 0, &LidarReport::crsDiffers},
             Case{"in the project", L"there.las", L"new", kUtm, 0, &LidarReport::alreadyThere},
             Case{"gone", L"gone.las", L"new", kUtm, 0, &LidarReport::unreadable},
         }) {
        SCOPED_TRACE(c.what);
        Record record;
        record.existingLasLayers = project.LayersForDialog(LayerKind::Las);
        record.AddFile(folder, L"1.las", L"new");
        record.AddFile(folder, c.name, c.layer, c.wkt).low[0] = c.west;
        const LidarReport found = CheckLidar(project, record, {JoinPath(folder, L"gone.las")});
        for (bool LidarReport::*finding : {&LidarReport::appending, &LidarReport::crsDiffers,
                                           &LidarReport::alreadyThere, &LidarReport::unreadable}) {
            EXPECT_EQ(found.*finding, finding == c.finding);
        }
        const bool isSkipped =
            c.finding == &LidarReport::alreadyThere || c.finding == &LidarReport::unreadable;
        EXPECT_EQ(found.leftOut.contains(JoinPath(folder, c.name)), isSkipped);
        EXPECT_EQ(found.leftOut.size(), isSkipped ? 1U : 0U);
    }
    Record record;
    record.AddFile(folder, L"1.las", L"old", kDegrees);
    EXPECT_TRUE(CheckLidar(project, record, {JoinPath(folder, L"gone.las")}).crsDiffers)
        << "than the CRS of its existing layer";
}

}  // namespace
}  // namespace orvex
