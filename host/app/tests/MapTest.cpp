#include <gtest/gtest.h>

#include <QAbstractItemModelTester>
#include <QApplication>
#include <QSignalSpy>
#include <QTest>
#include <QWheelEvent>
#include <cmath>
#include <limits>

#include "host/app/LayerTreeModel.h"
#include "host/app/MapItems.h"
#include "host/app/MapView.h"
#include "host/app/Project.h"
#include "host/app/tests/TestRasters.h"

namespace orvex {
namespace {

LayerFile Square(double west, double south, double side) {
    LayerFile file;
    file.path = L"/tile.las";
    file.min = {west, south, 0};
    file.max = {west + side, south + side, 10};
    return file;
}

TEST(Grid, LinesEndWhereNumbersRunOut) {
    EXPECT_EQ(GridLines(-1, 21, 10), (std::vector<double>{0, 10, 20}));
    EXPECT_TRUE(GridLines(1e12, 1e12 + 1, 1e-5).empty());
    EXPECT_TRUE(GridLines(1e300, 1.5e300, 1).empty());
    EXPECT_TRUE(GridLines(std::nan(""), 1, 1).empty());
}

TEST(FootprintOf, LeavesOutExtentsThatAreNone) {
    const double nan = std::nan("");
    const double infinity = std::numeric_limits<double>::infinity();
    const std::array<double, 4> bad[] = {
        {nan, 0, 1, 1}, {0, 0, infinity, 1}, {-1e300, 0, 1e300, 1}, {2, 0, 1, 1}, {0, 3, 1, 1}};
    for (const auto& [minX, minY, maxX, maxY] : bad) {
        LayerFile file;
        file.min = {minX, minY, 0};
        file.max = {maxX, maxY, 0};
        EXPECT_TRUE(FootprintOf(LayerKind::Las, file).isEmpty()) << minX << " " << maxX;
    }
    LayerFile raster;
    EXPECT_TRUE(FootprintOf(LayerKind::Raster, raster).isEmpty());
    raster.raster = {4, 2, 1, L"", {{10, 20, 14, 22}}, std::nullopt};
    EXPECT_EQ(FootprintOf(LayerKind::Raster, raster).boundingRect(), QRectF(10, 20, 4, 2));
    raster.raster.transform = {{0, nan, 0, 0, 0, 1}};
    EXPECT_TRUE(FootprintOf(LayerKind::Raster, raster).isEmpty());
}

TEST(LayerTreeModel, HoldsTogetherThroughChanges) {
    Project project;
    LayerTreeModel model(project);
    const QAbstractItemModelTester tester(&model, QAbstractItemModelTester::FailureReportingMode::Fatal);
    project.layers = {{L"a", "", {Square(0, 0, 1), Square(1, 0, 1)}}, {L"b", "", {Square(0, 0, 1)}}};
    project.layers[0].files[1].points = 12345;
    model.Reload();
    ASSERT_EQ(model.rowCount(), 2);
    const QModelIndex file = model.IndexOf(0, 1);
    EXPECT_EQ(model.parent(file), model.index(0, 0));
    EXPECT_EQ(LayerTreeModel::LayerOf(file), 0U);
    EXPECT_EQ(LayerTreeModel::FileOf(file), 1U);
    EXPECT_EQ(model.index(0, LayerTreeModel::kSize).data(),
              model.index(1, LayerTreeModel::kSize, model.index(0, 0)).data());
    project.layers.clear();
    model.Reload();
    EXPECT_EQ(model.rowCount(), 0);
}

class MapViewTest : public ::testing::Test {
  protected:
    /// A view of 400 x 300 pixels; pixel 120, 150 lies in the first file, 280, 150 in the second.
    MapViewTest() {
        project_.layers = {{L"a", "crs", {Square(0, 0, 100), Square(100, 0, 100)}},
                           {L"b", "other", {Square(9e6, 9e6, 1)}}};
        view_.resize(400, 300);
        view_.show();
        view_.ShowCrs("crs");
    }

    void Show(const std::vector<LayerFile>& files) {
        project_.layers[0].files = files;
        view_.ShowCrs("crs");
    }
    /// The file that a click at a pixel names; -1 for none.
    int FileAt(const QPoint& pixel) {
        QSignalSpy clicked(&view_, &MapView::FileClicked);
        QTest::mouseClick(view_.viewport(), Qt::LeftButton, {}, pixel);
        return clicked.isEmpty() ? -1 : static_cast<int>(clicked[0][1].value<std::size_t>());
    }
    void Move(const QPoint& pixel, Qt::MouseButtons buttons = Qt::NoButton) {
        QMouseEvent move(QEvent::MouseMove, pixel, view_.viewport()->mapToGlobal(pixel), Qt::NoButton,
                         buttons, Qt::NoModifier);
        QApplication::sendEvent(view_.viewport(), &move);
    }
    /// The view is at whole pixels.
    void ExpectAt(const QPoint& pixel, const QPointF& world) const {
        EXPECT_NEAR(view_.mapFromScene(world).x(), pixel.x(), 1);
        EXPECT_NEAR(view_.mapFromScene(world).y(), pixel.y(), 1);
    }
    void Turn(const QPoint& pixel, int notches) {
        QWheelEvent wheel(pixel, view_.viewport()->mapToGlobal(pixel), {}, {0, 120 * notches}, Qt::NoButton,
                          Qt::NoModifier, Qt::NoScrollPhase, false);
        QApplication::sendEvent(view_.viewport(), &wheel);
    }

    Project project_;
    MapView view_{project_};
};

TEST_F(MapViewTest, ZoomKeepsWhatIsUnderTheCursor) {
    const QPoint cursor(123, 56);
    const QPointF world = view_.mapToScene(cursor);
    for (const int notches : {1, 9, -20, 5}) {
        Turn(cursor, notches);
        ExpectAt(cursor, world);
    }
    Turn(cursor, -500);
    EXPECT_GT(view_.transform().m11(), 0);
    EXPECT_TRUE(std::isfinite(view_.mapToScene(QPoint(400, 300)).x()));
    Turn(cursor, 500);
    EXPECT_FALSE(view_.grab().isNull());
}

TEST_F(MapViewTest, AClickNamesTheSmallestFileUnderIt) {
    EXPECT_EQ(FileAt({120, 150}), 0);
    EXPECT_EQ(FileAt({280, 150}), 1);
    EXPECT_EQ(FileAt({200, 10}), -1);
    Show({Square(0, 0, 100), Square(40, 40, 20), Square(0, 0, 100)});
    EXPECT_EQ(FileAt({200, 150}), 1);
    EXPECT_EQ(FileAt({120, 150}), 2) << "of equals the one drawn last";
    Show({Square(7, 8, 0)});
    EXPECT_EQ(FileAt({201, 149}), 0) << "of no extent";
}

TEST_F(MapViewTest, DraggingMovesAndIsNoClick) {
    QSignalSpy clicked(&view_, &MapView::FileClicked);
    QTest::mousePress(view_.viewport(), Qt::LeftButton, {}, QPoint(120, 150));
    for (const int x : {160, 200, 280}) {
        Move({x, 150}, Qt::LeftButton);
    }
    QTest::mouseRelease(view_.viewport(), Qt::LeftButton, {}, QPoint(280, 150));
    EXPECT_EQ(clicked.count(), 0);
    EXPECT_EQ(FileAt({280, 150}), 0) << "what lay at 120 lies at 280 now";
    // Another size keeps the place and its middle; fitting takes the new size.
    view_.resize(500, 300);
    EXPECT_EQ(FileAt({330, 150}), 0);
    view_.FitAll();
    EXPECT_EQ(FileAt({330, 150}), 1);
}

class MapThumbnailTest : public ::testing::Test {
  protected:
    MapThumbnailTest() { view_.resize(400, 400); }

    void Show(const std::vector<LayerFile>& files) {
        project_.layers = {{L"r", "crs", files, LayerKind::Raster}};
        view_.show();
        view_.ShowCrs("crs");
        EXPECT_TRUE(QTest::qWaitFor([this] { return !view_.IsLoading(); }));
        QApplication::processEvents();
    }
    static LayerFile Placed(const std::wstring& path, int width, int height,
                            const std::array<double, 6>& transform) {
        LayerFile file;
        file.path = path;
        file.raster = {width, height, 1, L"GTiff", std::nullopt, transform};
        return file;
    }
    QColor ColourAt(int x, int y) { return view_.grab().toImage().pixelColor(x, y); }

    testing::TemporaryFolder folder_;
    Project project_;
    MapView view_{project_};
};

TEST_F(MapThumbnailTest, PicturesLieWhereTheirRastersDo) {
    testing::TestRaster raster(2, 2, GDT_Byte, {200, 200, 0, 0}, 3);
    raster.SetValues(2, {0, 0, 200, 200});
    raster.SetValues(3, {0, 0, 0, 0});
    const std::wstring path = raster.Save(folder_, L"a.tif", {"PHOTOMETRIC=RGB"});
    Show({Placed(path, 2, 2, {0, 50, 0, 100, 0, -50})});
    EXPECT_GT(ColourAt(120, 100).red(), 150) << "north";
    EXPECT_GT(ColourAt(120, 300).green(), 150) << "south";

    // Turned by half a circle, and moved far away, the first row lies in the south.
    Show({Placed(path, 2, 2, {500000, -50, 0, 5400000, 0, 50})});
    EXPECT_GT(ColourAt(120, 100).green(), 150);
    EXPECT_GT(ColourAt(120, 300).red(), 150);

    // Deep inside a picture only what is seen is drawn.
    for (int i = 0; i < 60; ++i) {
        QTest::keyClick(&view_, Qt::Key_Plus);
    }
    EXPECT_GT(ColourAt(130, 100).red() + ColourAt(130, 100).green(), 150);
}

TEST_F(MapThumbnailTest, RotatedCornersStayEmpty) {
    const std::wstring path =
        testing::TestRaster(2, 2, GDT_Byte, {255, 255, 255, 255}).Save(folder_, L"a.tif");
    view_.setPalette(QPalette(Qt::black));
    Show({Placed(path, 2, 2, {0, 50, 50, 100, -50, 50}),
          Placed(folder_.Write(L"bad.tif", "no raster"), 9, 9, {0, 1, 0, 0, 0, -1})});
    const QColor ground = view_.palette().color(QPalette::Base);
    EXPECT_NE(ColourAt(200, 130), ground);
    EXPECT_EQ(ColourAt(60, 60), ground);
    QSignalSpy clicked(&view_, &MapView::FileClicked);
    QTest::mouseClick(view_.viewport(), Qt::LeftButton, {}, QPoint(60, 60));
    EXPECT_EQ(clicked.count(), 0);
    QTest::mouseClick(view_.viewport(), Qt::LeftButton, {}, QPoint(200, 130));
    EXPECT_EQ(clicked.count(), 1);
}

}  // namespace
}  // namespace orvex
