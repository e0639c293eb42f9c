#include "host/app/Project.h"

#include <gmock/gmock.h>

#include <cmath>

#include "host/app/ProjectFile.h"
#include "host/app/RecordFiles.h"
#include "host/app/tests/FakeLasFileInfo.h"
#include "host/app/tests/FakeRasterFileInfo.h"
#include "orvexcommon/AddFilesParams.h"
#include "support/QtText.h"
#include "support/Text.h"
#include "support/testing/TemporaryFolder.h"

namespace orvex {
namespace {

using testing::FakeLasFileInfo;
using testing::FakeRasterFileInfo;
using testing::TemporaryFolder;

constexpr const char* kUtm =
    "PROJCS[\"UTM 32\",GEOGCS[\"E\",DATUM[\"E\",SPHEROID[\"G\",6378137,298.25]],"
    "PRIMEM[\"Greenwich\",0],UNIT[\"degree\",0.0174532925199433]],"
    "PROJECTION[\"Transverse_Mercator\"],PARAMETER[\"central_meridian\",9],UNIT[\"metre\",1]]";
constexpr const char* kDegrees =
    "GEOGCS[\"WGS 84\",DATUM[\"WGS_1984\",SPHEROID[\"WGS 84\",6378137,298.257223563]],"
    "PRIMEM[\"Greenwich\",0],UNIT[\"degree\",0.0174532925199433]]";

/// A record whose details go with it.
struct Record : AddFilesParams {
    ~Record() { DeleteDetails(*this); }

    FakeLasFileInfo& AddFile(const std::wstring& folder, const std::wstring& name, const std::wstring& layer,
                             const std::string& wkt = kUtm) {
        auto* info = new FakeLasFileInfo;
        info->wkt = wkt;
        lasFiles[folder].push_back(name);
        lasFileDetails[JoinPath(folder, name)] = info;
        lasFileLayers[JoinPath(folder, name)] = layer;
        return *info;
    }
    RasterProperties& AddRaster(const std::wstring& folder, const std::wstring& name,
                                const std::wstring& layer) {
        auto* info = new FakeRasterFileInfo;
        rasterFiles[folder].push_back(name);
        rasterFileDetails[JoinPath(folder, name)] = info;
        rasterFileLayers[JoinPath(folder, name)] = layer;
        return info->properties;
    }
};

LayerFile File(const std::wstring& path) {
    LayerFile file;
    file.path = path;
    file.points = 18446744073709551615U;
    file.min = {-1.5, 0.1, 1e-9};
    file.max = {1e9, 0.30000000000000004, 3};
    file.version = 14;
    file.pointFormat = 10;
    file.readOnly = false;
    file.footprintOnly = true;
    return file;
}

LayerFile Raster(const std::wstring& path) {
    LayerFile file;
    file.path = path;
    file.raster.width = 2147483647;
    file.raster.height = 3;
    file.raster.bands = 4;
    file.raster.driver = L"GTiff";
    file.raster.extent = {{-1.5, 0.1, 1e9, 0.30000000000000004}};
    file.raster.transform = {{500000.25, 0.5, 1e-9, 5.4e6, -0.25, -0.5}};
    return file;
}

TEST(ProjectFile, KeepsEverythingThroughSavingAndLoading) {
    const TemporaryFolder folder;
    Project project;
    project.lidarAccess = LidarAccess::NotAtAll;
    project.layers = {
        {L"Gel\u00E4nde \u00DF", kUtm, {File(L"/data/Gr\u00F6\u00DFe 100%.las"), File(L"/a/\xDCFF.las")}},
        {L"no CRS", "", {File(L"/x.las")}},
        {L"no CRS", kUtm, {Raster(L"/r/100%.tif"), {L"/r/no place.png", {}}}, LayerKind::Raster}};
    const QString where = ToQString(folder.Name(L"neues Projekt \u00FC"));
    QString problem;
    ASSERT_TRUE(SaveProject(where, project, problem)) << problem.toStdString();
    EXPECT_TRUE(IsProjectFolder(where));
    const auto loaded = LoadProject(where, problem);
    ASSERT_TRUE(loaded) << problem.toStdString();
    EXPECT_EQ(*loaded, project);
}

TEST(ProjectFile, ProjectsOfBeforeThereWereRastersStayReadableBothWays) {
    const TemporaryFolder folder;
    folder.Write(L"project.orvex.json",
                 R"({"format": "orvex-project", "version": 1, "lidarAccess": "readWrite", "layers": [
                     {"name": "a", "kind": "las", "wkt": "W", "files": [{"path": "/1.las", "points": "7",
                      "min": [1, 2, 3], "max": [4, 5, 6], "version": 12, "pointFormat": 3, "readOnly": false}]}]})");
    const QString where = ToQString(FromPath(folder.Path()));
    QString problem;
    const auto loaded = LoadProject(where, problem);
    ASSERT_TRUE(loaded) << problem.toStdString();
    ASSERT_EQ(loaded->layers.size(), 1U);
    EXPECT_EQ(loaded->layers[0].kind, LayerKind::Las);
    EXPECT_EQ(loaded->layers[0].files[0].points, 7U);
    EXPECT_EQ(loaded->layers[0].files[0].max[2], 6);
    // An older program still reads what holds nothing that it does not know.
    ASSERT_TRUE(SaveProject(where, *loaded, problem));
    EXPECT_NE(testing::ReadFile(folder.Name(L"project.orvex.json")).find("\"version\": 1"),
              std::string::npos);
}

TEST(ProjectFile, ExtentsThatAreNoNumbersStayNone) {
    const TemporaryFolder folder;
    Project project;
    project.layers = {{L"a", "", {File(L"/x.las")}}};
    project.layers[0].files[0].max[1] = std::nan("");
    QString problem;
    ASSERT_TRUE(SaveProject(ToQString(FromPath(folder.Path())), project, problem));
    const auto loaded = LoadProject(ToQString(FromPath(folder.Path())), problem);
    ASSERT_TRUE(loaded);
    EXPECT_TRUE(std::isnan(loaded->layers[0].files[0].max[1]));
}

TEST(ProjectFile, RefusesWhatIsNoProject) {
    struct Case {
        const char* content;
        const char* why;
    };
    const Case cases[] = {
        {"", "empty"},
        {"{\"format\": \"orvex-project\", \"version\": 1", "cut"},
        {"{\"format\": \"something else\"}", "another format"},
        {"[]", "no object"},
        {"{\"format\": \"orvex-project\", \"version\": 99, \"layers\": []}", "newer"},
    };
    for (const Case& c : cases) {
        const TemporaryFolder folder;
        folder.Write(L"project.orvex.json", c.content);
        QString problem;
        EXPECT_FALSE(LoadProject(ToQString(FromPath(folder.Path())), problem)) << c.why;
        EXPECT_FALSE(problem.isEmpty()) << c.why;
    }
}

TEST(ProjectFile, AFailedSaveLeavesTheOldFileAndNothingElse) {
    const TemporaryFolder folder;
    const QString where = ToQString(FromPath(folder.Path()));
    QString problem;
    ASSERT_TRUE(SaveProject(where, Project(), problem));
    const std::string before = testing::ReadFile(folder.Name(L"project.orvex.json"));
    // A folder of the file's name cannot be replaced by a file, whoever tries.
    EXPECT_FALSE(SaveProject(ToQString(folder.Name(L"project.orvex.json")), Project(), problem));
    EXPECT_FALSE(problem.isEmpty());
    EXPECT_EQ(testing::ReadFile(folder.Name(L"project.orvex.json")), before);
    EXPECT_EQ(folder.Entries(), 1U);
}

TEST(Project, TakesFilesIntoTheLayersTheyWereAssignedTo) {
    Project project;
    project.layers = {{L"old", kUtm, {File(NativePath(L"/p/there.las"))}}};
    Record record;
    record.AddFile(NativePath(L"/a"), L"1.las", L"old");
    record.AddFile(NativePath(L"/a"), L"2.las", L"LAS Layer_1", kDegrees).high = {5, 6, 7};
    record.AddFile(NativePath(L"/b/"), L"3.las", L"LAS Layer_1", kDegrees).readOnly = false;
    record.AddFile(NativePath(L"/b"), L"skipped.las", L"LAS Layer_2");
    record.lasLoadSetting = true;
    const AddedFiles added =
        project.Take(LayerKind::Las, LasFilesOf(record, {NativePath(L"/b/skipped.las")}));
    EXPECT_EQ(added.files, 3U);
    EXPECT_EQ(added.newLayers, 1U);
    EXPECT_EQ(added.mainLayer, 1U);
    ASSERT_EQ(project.layers.size(), 2U);
    EXPECT_EQ(project.layers[0].files.size(), 2U);
    const Layer& layer = project.layers[1];
    EXPECT_EQ(layer.name, L"LAS Layer_1");
    EXPECT_EQ(layer.wkt, kDegrees);
    ASSERT_EQ(layer.files.size(), 2U);
    EXPECT_EQ(layer.files[0].path, NativePath(L"/a/2.las"));
    EXPECT_EQ(layer.files[0].max[2], 7);
    EXPECT_TRUE(layer.files[0].readOnly);
    EXPECT_TRUE(layer.files[0].footprintOnly);
    EXPECT_EQ(layer.files[1].path, NativePath(L"/b/3.las"));
    EXPECT_FALSE(layer.files[1].readOnly);
    EXPECT_EQ(project.LayersForDialog(LayerKind::Las).at(L"old"), FromUtf8(kUtm));
}

TEST(Project, TakesRastersIntoLayersOfTheirOwnKind) {
    Project project;
    project.layers = {{L"same name", kUtm, {File(L"/p/there.las")}},
                      {L"same name", kUtm, {Raster(NativePath(L"/a/THERE.tif"))}, LayerKind::Raster}};
    Record record;
    RasterProperties& first = record.AddRaster(NativePath(L"/a"), L"2.tif", L"same name");
    first.width = 40;
    first.height = 30;
    first.bands = 3;
    first.driver = L"PNG";
    first.transform = {{1, 2, 3, 4, 5, 6}};
    record.AddRaster(NativePath(L"/a"), L"1.tif", L"same name");
    record.AddRaster(NativePath(L"/a"), L"there.tif", L"same name");
    record.AddRaster(NativePath(L"/b"), L"3.tif", L"Raster Layer_2").wkt = kDegrees;
    const AddedFiles added = project.Take(LayerKind::Raster, RasterFilesOf(record));
    EXPECT_EQ(added.files, 3U);
    EXPECT_EQ(added.alreadyThere, 1U);
    EXPECT_EQ(added.newLayers, 1U);
    EXPECT_EQ(added.mainLayer, 1U);
    ASSERT_EQ(project.layers.size(), 3U);
    EXPECT_EQ(project.layers[0].files.size(), 1U);
    const std::vector<LayerFile>& files = project.layers[1].files;
    ASSERT_EQ(files.size(), 3U);
    EXPECT_EQ(files[1].path, NativePath(L"/a/2.tif")) << "the order of the record";
    EXPECT_EQ(files[2].path, NativePath(L"/a/1.tif"));
    EXPECT_EQ(files[1].raster, (RasterInfo{40, 30, 3, L"PNG", std::nullopt, {{1, 2, 3, 4, 5, 6}}}));
    EXPECT_EQ(project.layers[2].kind, LayerKind::Raster);
    EXPECT_EQ(project.layers[2].wkt, kDegrees);
    EXPECT_EQ(project.LayersForDialog(LayerKind::Raster).size(), 2U);
    EXPECT_EQ(project.LayersForDialog(LayerKind::Las).size(), 1U);
}

TEST(Project, IsOpenedAtTheLayerWithMostToSee) {
    EXPECT_FALSE(Project().MainLayer());
    const auto rasters = [](const std::string& wkt, std::size_t placed, std::size_t others) {
        Layer layer{L"Raster Layer_1", wkt, std::vector<LayerFile>(placed + others), LayerKind::Raster};
        for (std::size_t i = 0; i < placed; ++i) {
            layer.files[i].raster.extent = {0, 0, 1, 1};
        }
        return layer;
    };
    Project project;
    project.layers = {rasters({}, 9, 0), rasters(kUtm, 1, 9), rasters(kDegrees, 2, 0)};
    EXPECT_EQ(project.MainLayer(), 2U) << "with a CRS, and more files that are drawn";
    project.layers.push_back({L"LAS Layer_1", kUtm, std::vector<LayerFile>(3)});
    EXPECT_EQ(project.MainLayer(), 3U);
}

TEST(Project, RemovesFilesAndTheLayersThatTheyLeaveEmpty) {
    Project project;
    project.layers = {{L"a", "", {File(L"/1"), File(L"/2"), File(L"/3")}},
                      {L"b", "", {File(L"/4")}},
                      {L"c", "", {File(L"/5")}}};
    project.Remove({{0, 0}, {0, 2}, {1, 0}}, {2});
    ASSERT_EQ(project.layers.size(), 1U);
    ASSERT_EQ(project.layers[0].files.size(), 1U);
    EXPECT_EQ(project.layers[0].files[0].path, L"/2");
}

TEST(Project, DetailsAreDeletedOnce) {
    {
        Record record;
        record.AddFile(L"/a", L"1.las", L"x");
        record.AddFile(L"/a", L"2.las", L"x");
        record.AddRaster(L"/a", L"3.tif", L"y");
        EXPECT_EQ(FakeLasFileInfo::alive, 2);
        EXPECT_EQ(FakeRasterFileInfo::alive, 1);
        DeleteDetails(record);
        EXPECT_EQ(FakeLasFileInfo::alive, 0);
        EXPECT_EQ(FakeRasterFileInfo::alive, 0);
    }
    EXPECT_EQ(FakeLasFileInfo::alive, 0);
}

class LidarCheckTest : public ::testing::Test {
  protected:
    std::wstring Readable(const std::wstring& name) {
        folder_.Write(name, "content");
        return FromPath(folder_.Path());
    }

    TemporaryFolder folder_;
    Project project_;
    Record record_;
};

TEST_F(LidarCheckTest, FindsNothingInFilesThatFit) {
    record_.AddFile(Readable(L"1.las"), L"1.las", L"new");
    record_.AddFile(Readable(L"2.las"), L"2.las", L"new");
    const LidarReport found = CheckLidar(project_, record_);
    EXPECT_FALSE(found.appending || found.crsDiffers || found.crsMissing || found.damaged ||
                 found.alreadyThere || found.unreadable);
    EXPECT_TRUE(found.tellSkipped);
}

TEST_F(LidarCheckTest, ComparesFilesWithTheLayerTheyGoTo) {
    project_.layers = {{L"old", kUtm, {File(L"/p.las")}}};
    record_.existingLasLayers = project_.LayersForDialog(LayerKind::Las);
    record_.AddFile(Readable(L"1.las"), L"1.las", L"old", kDegrees);
    record_.AddFile(Readable(L"2.las"), L"2.las", L"new", "");
    const LidarReport found = CheckLidar(project_, record_);
    EXPECT_TRUE(found.appending);
    EXPECT_TRUE(found.crsDiffers);
    EXPECT_TRUE(found.crsMissing);
}

TEST_F(LidarCheckTest, SkipsWhatIsThereAlreadyOrGone) {
    const std::wstring folder = Readable(L"there.las");
    project_.layers = {{L"old", kUtm, {File(JoinPath(folder, L"THERE.las"))}}};
    record_.AddFile(folder, L"there.las", L"old");
    record_.AddFile(folder, L"gone.las", L"old");
    record_.AddFile(Readable(L"odd.las"), L"odd.las", L"old").low = {11, 0, 0};
    const LidarReport found = CheckLidar(project_, record_);
    EXPECT_TRUE(found.alreadyThere);
    EXPECT_TRUE(found.unreadable);
    EXPECT_TRUE(found.damaged);
    EXPECT_THAT(found.skipped, ::testing::UnorderedElementsAre(JoinPath(folder, L"there.las"),
                                                               JoinPath(folder, L"gone.las")));
}

}  // namespace
}  // namespace orvex
