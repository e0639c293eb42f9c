// What the host keeps between its runs.
#include "host/app/Project.h"

#include <gtest/gtest.h>

#include <cmath>

#include "host/app/HostPreferences.h"
#include "host/app/ProjectFile.h"
#include "host/app/SampleProject.h"
#include "support/QtText.h"
#include "support/Text.h"
#include "support/testing/TemporaryFolder.h"

namespace orvex {
namespace {

namespace fs = std::filesystem;
using testing::TemporaryFolder;

constexpr const char* kUtm = "a CRS";

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
    file.thinning = 256;
    file.opened = path + L".las";
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

LayerFile Shapefile(const std::wstring& path) {
    LayerFile file;
    file.path = path;
    file.feature.shapeType = 15;
    file.feature.count = 18446744073709551615U;
    file.feature.extent = {{-1.5, 0.1, 1e9, 0.30000000000000004}};
    return file;
}

LayerFile Photo(const std::wstring& path) {
    LayerFile file;
    file.path = path;
    file.photo.position = {{9.123456789012345, -48.1, 350.25}};
    file.photo.heading = 359.5;
    file.photo.timeUtc = L"2024-05-01 10:20:30";
    return file;
}

TEST(ProjectFile, KeepsEverythingThroughSavingAndLoading) {
    const TemporaryFolder folder;
    Project project;
    project.lidarAccess = LidarAccess::NotAtAll;
    project.layers = {
        {L"Gel\u00E4nde \u00DF", kUtm, {File(L"/data/Gr\u00F6\u00DFe 100%.las"), File(L"/a/\xDCFF.las")}},
        {L"no CRS", "", {File(L"/x.las")}},
        {L"no CRS", kUtm, {Raster(L"/r/100%.tif"), {L"/r/no place.png", {}}}, LayerKind::Raster},
        {L"roads", kUtm, {Shapefile(L"/f/100%.shp"), {L"/f/empty.shp", {}}}, LayerKind::Feature},
        {L"roads", "", {Photo(L"/p/100%.jpg"), {L"/p/no place.jpg", {}}}, LayerKind::Photo}};
    const QString where = ToQString(folder.Name(L"neues Projekt \u00FC"));
    QString problem;
    ASSERT_TRUE(SaveProject(where, project, problem)) << problem.toStdString();
    EXPECT_TRUE(IsProjectFolder(where));
    const auto loaded = LoadProject(where, problem);
    ASSERT_TRUE(loaded) << problem.toStdString();
    EXPECT_EQ(*loaded, project);

    project.layers[0].files[0].max[1] = std::nan("");
    ASSERT_TRUE(SaveProject(where, project, problem));
    EXPECT_TRUE(std::isnan(LoadProject(where, problem)->layers[0].files[0].max[1]));
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
    const auto isVersion = [&](const char* version) {
        return testing::ReadFile(folder.Name(L"project.orvex.json")).find(version) != std::string::npos;
    };
    EXPECT_TRUE(isVersion("\"version\": 1"));
    // The least version that holds every kind of layer, in whatever order they are.
    Project project;
    project.layers = {{L"f", "", {Shapefile(L"/f.shp")}, LayerKind::Feature},
                      {L"r", "", {Raster(L"/r.tif")}, LayerKind::Raster}};
    ASSERT_TRUE(SaveProject(where, project, problem));
    EXPECT_TRUE(isVersion("\"version\": 3"));
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

TEST(Project, RemovesFilesAndTheLayersThatTheyLeaveEmpty) {
    Project project;
    project.layers = {{L"a", "", {File(L"/1"), File(L"/2"), File(L"/3")}},
                      {L"b", "", {File(L"/4")}},
                      {L"c", "", {File(L"/5")}}};
    project.Remove({{0, 0}, {0, 2}, {1, 0}, {2, 0}});
    ASSERT_EQ(project.layers.size(), 1U);
    ASSERT_EQ(project.layers[0].files.size(), 1U);
    EXPECT_EQ(project.layers[0].files[0].path, L"/2");
}

TEST(Project, UpdatesTheFilesOfAKindThatItHas) {
    Project project;
    project.layers = {{L"a", "", {{L"/1.jpg", {}}, {L"/2.jpg", {}}}, LayerKind::Photo},
                      {L"a", "", {{L"/2.jpg", {}}}, LayerKind::Raster},
                      {L"b", "", {{L"/3.jpg", {}}}, LayerKind::Photo}};
    EXPECT_EQ(project.Update(LayerKind::Photo, {Photo(L"/2.jpg"), Photo(L"/3.jpg"), Photo(L"/4.jpg")}),
              (FilePlaces{{0, 1}, {2, 0}}));
    EXPECT_EQ(project.layers[0].files[1], Photo(L"/2.jpg"));
    EXPECT_EQ(project.layers[1].files[0], LayerFile({L"/2.jpg", {}}));
    EXPECT_EQ(project.FileCount(), 4U);
}

TEST(SampleProject, OfAnEarlierVersionGetsWhatItLacksAndLosesNothing) {
    const TemporaryFolder folder;
    folder.Write(L"Größe 日本/data/kept.las", "what was there");
    folder.Write(L"Größe 日本/data/rasters.new/half.tif", "of an interrupted run");
    const fs::path project = folder.Path() / ToPath(L"Größe 日本");
    ASSERT_EQ(EnsureSampleProject(project), project);
    const fs::path data = SampleData(project);
    EXPECT_EQ(testing::ReadFile(FromPath(data / "kept.las")), "what was there");
    EXPECT_FALSE(fs::exists(data / "wgs84.las")) << "mixed with what was there";
    EXPECT_TRUE(fs::exists(data / "elevation" / "terrain.bil"));
    EXPECT_FALSE(fs::exists(data / "rasters" / "half.tif"));
    EXPECT_FALSE(fs::exists(data / "rasters.new"));

    fs::remove(data / "elevation" / "terrain.bil");
    EnsureSampleProject(project);
    EXPECT_FALSE(fs::exists(data / "elevation" / "terrain.bil")) << "made twice";
}

TEST(HostPreferences, RemembersThroughItsFile) {
    const TemporaryFolder folder;
    const QString path = ToQString(folder.Name(L"sub/host.json"));
    {
        HostPreferences preferences(path);
        preferences.dark = true;
        preferences.windowGeometry = QByteArray("\x00\xFF\x10", 3);
        for (int i = 0; i < 12; ++i) {
            preferences.AddRecentProject(QString("/Projekt \u00E4 %1").arg(i));
        }
        preferences.AddRecentProject(QString("/Projekt \u00E4 5"));
        preferences.RemoveRecentProject(QString("/Projekt \u00E4 9"));
        preferences.Save();
    }
    const HostPreferences preferences(path);
    EXPECT_TRUE(preferences.dark);
    EXPECT_EQ(preferences.windowGeometry, QByteArray("\x00\xFF\x10", 3));
    ASSERT_EQ(preferences.RecentProjects().size(), 9);
    EXPECT_EQ(preferences.RecentProjects()[0], QString("/Projekt \u00E4 5"));
    EXPECT_EQ(preferences.RecentProjects()[1], QString("/Projekt \u00E4 11"));
}

TEST(HostPreferences, ADamagedFileGivesTheDefaults) {
    const TemporaryFolder folder;
    for (const char* content : {"", "{\"recentProjects\": 7, \"windowGeometry\": []", "[1, 2]", "\xFF\xFE"}) {
        const HostPreferences preferences(ToQString(folder.Write(L"host.json", content)));
        EXPECT_TRUE(preferences.RecentProjects().isEmpty());
        EXPECT_FALSE(preferences.dark);
    }
}

}  // namespace
}  // namespace orvex
