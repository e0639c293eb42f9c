// Feature files of a record, from the dialog to the map.
#include <gmock/gmock.h>

#include <QApplication>
#include <QTest>
#include <QWidget>

#include "host/app/FeatureItem.h"
#include "host/app/FeatureJobs.h"
#include "host/app/FeatureShapes.h"
#include "host/app/MapView.h"
#include "host/app/RecordFeatures.h"
#include "host/app/RecordFiles.h"
#include "host/app/RecordIntake.h"
#include "host/app/SampleVectors.h"
#include "host/app/tests/TestRecord.h"
#include "support/QtText.h"
#include "support/Text.h"
#include "support/testing/Scripted.h"
#include "support/testing/TemporaryFolder.h"

namespace orvex {
namespace {

namespace fs = std::filesystem;
using ::testing::ElementsAre;
using testing::Record;
using testing::TemporaryFolder;

constexpr double kWest = 512000;
constexpr double kSouth = 5403000;

class FeaturesTest : public ::testing::Test {
  protected:
    FeaturesTest() {
        fs::create_directories(folder_.Path() / "data");
        WriteSampleVectors(folder_.Path() / "data", kWest, kSouth, 25832);
        for (bool* kind : {&record_.featureImportPoints, &record_.featureImportLines,
                           &record_.featureImportPolygons, &record_.featureImportText}) {
            *kind = true;
        }
        record_.featureOutputFolder = folder_.Name(L"out");
    }
    void Add(const std::wstring& key, const std::wstring& name) {
        record_.featureFiles[key] = folder_.Name(L"data/" + name);
    }
    IntakeResult Take() {
        return RecordIntake(project_, ToQString(folder_.Name(L"project")), false, &window_).Take(record_);
    }
    std::vector<std::string> FilesOf(const Layer& layer) {
        std::vector<std::string> names;
        for (const LayerFile& file : layer.files) {
            names.push_back(ToUtf8(FileNameOf(file.path)));
        }
        return names;
    }

    TemporaryFolder folder_;
    Record record_;
    Project project_;
    QWidget window_;
};

TEST_F(FeaturesTest, ShapefilesStayWhereTheyAreAndOthersAreConverted) {
    Add(L"buildings", L"buildings.shp");
    Add(L"plan", L"site plan.dxf");
    Add(L"walk", L"walk.kml");
    const IntakeResult result = Take();
    EXPECT_TRUE(result.news.empty()) << ToUtf8(result.news[0].lines[0]);
    ASSERT_EQ(project_.layers.size(), 3U);
    const Layer& buildings = project_.layers[0];
    EXPECT_EQ(buildings.kind, LayerKind::Feature);
    EXPECT_EQ(buildings.files[0].path, folder_.Name(L"data/buildings.shp"));
    EXPECT_EQ(buildings.files[0].feature,
              (FeatureInfo{5, 5, {{kWest + 120, kSouth + 60, kWest + 530, kSouth + 340}}}));
    EXPECT_THAT(
        FilesOf(project_.layers[1]),
        ElementsAre("site plan_PIPES_lines.shp", "site plan_SURVEY_points.shp", "site plan_SURVEY_text.shp",
                    "site plan_TANKS_lines.shp", "site plan_TANKS_polygons.shp"));
    EXPECT_EQ(project_.layers[1].files[1].feature.count, 12U);
    EXPECT_EQ(CrsGroups().Of(project_.layers[0].wkt), CrsGroups().Of(project_.layers[1].wkt));
    EXPECT_EQ(result.places.size(), 1U + 5 + 2);
    EXPECT_EQ(result.mainLayer, 1U);

    // The same once more: the shapefile is there already, the others get names of their own.
    record_.existingFeatureFiles = project_.PathsOf(LayerKind::Feature);
    const IntakeResult again = Take();
    ASSERT_EQ(project_.layers.size(), 5U);
    EXPECT_EQ(project_.layers[3].name, L"plan (2)");
    EXPECT_EQ(FilesOf(project_.layers[3])[0], "site plan_PIPES_lines (2).shp");
    ASSERT_EQ(again.news.size(), 1U) << "names that were taken";
    EXPECT_EQ(again.news[0].lines.size(), 5U + 2);
}

TEST_F(FeaturesTest, OneBadFileDoesNotKeepTheOthersOut) {
    folder_.Write(L"data/bad.dxf", "no drawing");
    folder_.Write(L"data/bad.shp", "no shapefile");
    Add(L"a", L"bad.dxf");
    Add(L"b", L"bad.shp");
    Add(L"c", L"missing.kml");
    Add(L"wells", L"wells.shp");
    folder_.Write(L"data/roads copy.shp", testing::ReadFile(folder_.Name(L"data/roads.shp")));
    Add(L"roads copy", L"roads copy.shp");
    record_.featureImportText = record_.featureImportPoints = false;
    const IntakeResult result = Take();
    ASSERT_EQ(project_.layers.size(), 1U);
    EXPECT_EQ(project_.layers[0].files[0].feature.count, 24U);
    EXPECT_EQ(result.news.size(), 4U);
    EXPECT_TRUE(std::ranges::any_of(result.news, [](const auto& section) {
        return section.heading.find(Text(text::kShapeIndexMissing)) != std::wstring::npos;
    })) << "GDAL names an option of its own";
    for (const auto& section : result.news) {
        EXPECT_NE(section.heading.find(folder_.Name(L"data")), std::wstring::npos) << ToUtf8(section.heading);
    }
    const std::wstring text = RecordText(record_);
    EXPECT_NE(text.find(L"wells: " + folder_.Name(L"data/wells.shp")), std::wstring::npos);
    EXPECT_NE(text.find(record_.featureOutputFolder), std::wstring::npos);
}

TEST_F(FeaturesTest, AStopKeepsWhatIsComplete) {
    struct Steps final : testing::RecordingProgress {
        bool IsCancelled() override { return position >= 1000; }
    };
    Add(L"a", L"walk.kml");
    Add(L"b", L"site plan.dxf");
    FeatureImport import(FeatureFilesOf(record_, project_), {true, true, true, true, folder_.Name(L"out")});
    Steps steps;
    import.Run(steps);
    EXPECT_TRUE(import.Result().stopped);
    EXPECT_EQ(import.Result().files.size(), 2U);
    std::size_t shapefiles = 0;
    for (const auto& entry : fs::directory_iterator(folder_.Path() / "out")) {
        shapefiles += entry.path().extension() == ".shp" ? 1 : 0;
        EXPECT_FALSE(FromPath(entry.path()).find(L".orvex-") != std::wstring::npos) << entry.path();
    }
    EXPECT_EQ(shapefiles, 2U);
}

TEST_F(FeaturesTest, ShapesAreReadUpToALimit) {
    const auto isCancelled = [] { return false; };
    const auto polygons = ReadShapes(folder_.Name(L"data/buildings.shp"), isCancelled).shapes;
    ASSERT_NE(polygons, nullptr);
    EXPECT_EQ(polygons->polygons.size(), 5U);
    EXPECT_EQ(polygons->vertices, 25U);
    EXPECT_FALSE(polygons->isCut);
    EXPECT_EQ(polygons->polygons[0].bounds, QRectF(kWest + 120, kSouth + 250, 60, 24));

    ThumbnailLimits limits;
    limits.vertices = 10;
    const Thumbnail cut = ReadShapes(folder_.Name(L"data/wells.shp"), isCancelled, limits);
    ASSERT_NE(cut.shapes, nullptr);
    EXPECT_EQ(cut.shapes->points.size(), 10);
    EXPECT_TRUE(cut.shapes->isCut);
    EXPECT_FALSE(cut.problem.isEmpty());

    const Thumbnail bad = ReadShapes(folder_.Write(L"bad.shp", "x"), isCancelled);
    EXPECT_EQ(bad.shapes, nullptr);
    EXPECT_FALSE(bad.problem.isEmpty());
}

TEST_F(FeaturesTest, TheMapShowsShapesWhereTheyLie) {
    Add(L"buildings", L"buildings.shp");
    Take();
    MapView view(project_);
    view.resize(500, 400);
    view.show();
    view.ShowCrs(project_.layers[0].wkt);
    ASSERT_TRUE(QTest::qWaitFor([&view] { return !view.IsLoading(); }));
    QApplication::processEvents();
    const auto colourAt = [&view](double x, double y) {
        const QPoint pixel = view.mapFromScene(QPointF(kWest + x, kSouth + y));
        return view.grab().toImage().pixelColor(pixel);
    };
    const QColor ground = view.palette().color(QPalette::Base);
    EXPECT_NE(colourAt(470, 310), ground) << "in the depot";
    EXPECT_EQ(colourAt(405, 240), ground) << "between the buildings";
    for (int i = 0; i < 70; ++i) {
        QTest::keyClick(&view, Qt::Key_Plus);
    }
    view.grab();  // deep inside, far beyond the coordinates that a painter takes
}

TEST(FeatureItem, ClipsAtTheLimits) {
    const QRectF limits(0, 0, 10, 10);
    struct Case {
        QLineF line;
        std::optional<QLineF> clipped;
    };
    const Case cases[] = {
        {{1, 1, 2, 2}, QLineF(1, 1, 2, 2)},       {{-5, 5, 15, 5}, QLineF(0, 5, 10, 5)},
        {{-5, -5, 15, 15}, QLineF(0, 0, 10, 10)}, {{-5, 1, -1, 9}, std::nullopt},
        {{5, -1e3, 5, 1e3}, QLineF(5, 0, 5, 10)}, {{-5, 6, 6, 17}, std::nullopt},
    };
    for (const Case& c : cases) {
        EXPECT_EQ(ClippedLine(c.line, limits), c.clipped) << c.line.x1() << " " << c.line.y1();
    }
    const QPolygonF around({{-1e9, -1e9}, {1e9, -1e9}, {1e9, 1e9}, {-1e9, 1e9}});
    EXPECT_EQ(ClippedRing(around, limits).boundingRect(), limits);
    EXPECT_TRUE(ClippedRing(around.translated(5e9, 0), limits).isEmpty());
    const QPolygonF inside({{1, 1}, {5, 1}, {5, 5}});
    EXPECT_EQ(ClippedRing(inside, limits), inside);
}

}  // namespace
}  // namespace orvex
