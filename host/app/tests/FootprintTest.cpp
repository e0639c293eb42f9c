#include <gtest/gtest.h>

#include <QAbstractItemModelTester>
#include <QApplication>
#include <QElapsedTimer>
#include <QHelpEvent>
#include <QSignalSpy>
#include <QTest>
#include <QToolTip>
#include <QWheelEvent>
#include <cmath>
#include <limits>

#include "host/app/FootprintView.h"
#include "host/app/HostText.h"
#include "host/app/LayerTreeModel.h"
#include "host/app/Project.h"
#include "host/app/ViewTransform.h"
#include "host/app/tests/TestRasters.h"

namespace orvex {
namespace {

void ExpectNear(const QPointF& a, const QPointF& b, double tolerance) {
    EXPECT_NEAR(a.x(), b.x(), tolerance);
    EXPECT_NEAR(a.y(), b.y(), tolerance);
}

LayerFile Square(double west, double south, double side) {
    LayerFile file;
    file.path = L"/tile.las";
    file.min = {west, south, 0};
    file.max = {west + side, south + side, 10};
    return file;
}

TEST(ViewTransform, FitsWithNorthUp) {
    ViewTransform view;
    view.Fit(QRectF(500000, 5400000, 200, 100), QSizeF(440, 340), 20);
    ExpectNear(view.ToPixel(QPointF(500000, 5400000)), {20, 270}, 1e-3);
    ExpectNear(view.ToPixel(QPointF(500200, 5400100)), {420, 70}, 1e-3);
    EXPECT_DOUBLE_EQ(view.PixelsPerUnit(), 2);
}

TEST(ViewTransform, ZoomKeepsWhatIsUnderTheCursor) {
    ViewTransform view;
    view.Fit(QRectF(500000, 5400000, 1000, 1000), QSizeF(800, 600), 0);
    const QPointF cursor(123, 456);
    const QPointF world = view.ToWorld(cursor);
    for (const double factor : {1.25, 8.0, 0.01, 3.0}) {
        view.ZoomAbout(cursor, factor);
        ExpectNear(view.ToWorld(cursor), world, 1e-6);
    }
    view.Pan({10, -20});
    ExpectNear(view.ToPixel(world), cursor + QPointF(10, -20), 1e-3);
}

TEST(ViewTransform, StaysUsableAtItsLimits) {
    ViewTransform view;
    view.Fit(QRectF(7, 8, 0, 0), QSizeF(400, 300), 0);
    ExpectNear(view.ToPixel(QPointF(7, 8)), {200, 150}, 1e-6);
    for (int i = 0; i < 500; ++i) {
        view.ZoomAbout({0, 0}, 0.5);
    }
    EXPECT_GT(view.PixelsPerUnit(), 0);
    EXPECT_TRUE(std::isfinite(view.ToWorld({400, 300}).x()));
}

TEST(Grid, StepsAreOneTwoOrFive) {
    struct Case {
        double pixelsPerUnit;
        double step;
        int decimals;
    };
    for (const Case& c : {Case{1, 100, 0}, Case{0.6, 200, 0}, Case{0.25, 500, 0}, Case{0.11, 1000, 0},
                          Case{100, 1, 0}, Case{400, 0.5, 1}, Case{4000, 0.05, 2}}) {
        EXPECT_NEAR(GridStep(c.pixelsPerUnit, 100), c.step, c.step * 1e-9) << c.pixelsPerUnit;
        EXPECT_EQ(GridDecimals(c.step), c.decimals) << c.step;
    }
}

TEST(Grid, LinesEndWhereNumbersRunOut) {
    EXPECT_EQ(GridLines(-1, 21, 10), (std::vector<double>{0, 10, 20}));
    EXPECT_TRUE(GridLines(1, 9, 10).empty());
    EXPECT_TRUE(GridLines(1e12, 1e12 + 1, 1e-5).empty());
    EXPECT_TRUE(GridLines(1e300, 1.5e300, 1).empty());
    EXPECT_TRUE(GridLines(std::nan(""), 1, 1).empty());
}

TEST(FootprintSet, HitsTheSmallestOfWhatLiesOnEachOther) {
    FootprintSet set;
    EXPECT_TRUE(set.Add(0, 0, 0, 0, 100, 100));
    EXPECT_TRUE(set.Add(0, 1, 40, 40, 60, 60));
    EXPECT_TRUE(set.Add(0, 2, 200, 0, 200, 0));
    EXPECT_EQ(set.At({50, 50}, 0), 1U);
    EXPECT_EQ(set.At({10, 10}, 0), 0U);
    EXPECT_FALSE(set.At({150, 50}, 0));
    EXPECT_EQ(set.At({201, 1}, 2), 2U);
    EXPECT_EQ(set.Bounds(), QRectF(0, 0, 200, 100));
    EXPECT_EQ(set.Find(0, 1), 1U);
}

TEST(FootprintSet, LeavesOutExtentsThatAreNone) {
    FootprintSet set;
    const double nan = std::nan("");
    const double infinity = std::numeric_limits<double>::infinity();
    EXPECT_FALSE(set.Add(0, 0, nan, 0, 1, 1));
    EXPECT_FALSE(set.Add(0, 0, 0, 0, infinity, 1));
    EXPECT_FALSE(set.Add(0, 0, -1e300, 0, 1e300, 1));
    EXPECT_FALSE(set.Add(0, 0, 2, 0, 1, 1));
    EXPECT_FALSE(set.Add(0, 0, 0, 3, 1, 1));
    EXPECT_TRUE(set.Bounds().isEmpty());
}

TEST(FootprintSet, RotatedFootprintsAreHitWhereTheyAre) {
    FootprintSet set;
    EXPECT_TRUE(
        set.Add(0, 0, QPolygonF({QPointF(50, 0), QPointF(100, 50), QPointF(50, 100), QPointF(0, 50)})));
    EXPECT_TRUE(set.Add(0, 1, QPolygonF({QPointF(0, 30), QPointF(30, 30), QPointF(30, 0), QPointF(0, 0)})));
    EXPECT_TRUE(set.All()[1].corners.isEmpty()) << "its sides run along the axes";
    EXPECT_EQ(set.At({60, 60}, 0), 0U);
    EXPECT_FALSE(set.At({95, 95}, 0));
    EXPECT_EQ(set.At({10, 10}, 0), 1U);
    EXPECT_EQ(set.Bounds(), QRectF(0, 0, 100, 100));
    EXPECT_FALSE(
        set.Add(0, 2, QPolygonF({QPointF(0, 0), QPointF(std::nan(""), 0), QPointF(1, 1), QPointF(0, 1)})));
}

TEST(LayerTreeModel, TellsOfRastersWhatTheyAre) {
    Project project;
    LayerFile placed = Square(0, 0, 1);
    placed.raster = {640, 480, 3, L"GTiff", {{0, 0, 64, 48}}, std::nullopt};
    LayerFile nowhere = placed;
    nowhere.raster.extent.reset();
    project.layers = {{L"r", "", {placed, nowhere}, LayerKind::Raster}};
    LayerTreeModel model(project);
    const QModelIndex layer = model.index(0, 0);
    EXPECT_EQ(model.index(0, LayerTreeModel::kSize).data().toString(), "");
    EXPECT_EQ(model.index(0, LayerTreeModel::kSize, layer).data().toString(), "640 x 480");
    EXPECT_EQ(model.index(0, LayerTreeModel::kFormat, layer).data().toString(), "GTiff");
    EXPECT_NE(model.index(1, LayerTreeModel::kFormat, layer).data().toString(), "GTiff");
    EXPECT_TRUE(model.index(1, 0, layer).data(Qt::ToolTipRole).toString().contains(HostText(41428_lsid)));
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

class FootprintViewTest : public ::testing::Test {
  protected:
    FootprintViewTest() {
        project_.layers = {{L"a", "crs", {Square(0, 0, 100), Square(100, 0, 100)}},
                           {L"b", "other", {Square(9e6, 9e6, 1)}}};
        view_.resize(400, 300);
        view_.show();
        view_.ShowCrs("crs");
    }

    Project project_;
    FootprintView view_{project_};
};

TEST_F(FootprintViewTest, AClickNamesTheFileUnderIt) {
    QSignalSpy clicked(&view_, &FootprintView::FileClicked);
    QTest::mouseClick(&view_, Qt::LeftButton, {}, QPoint(120, 150));
    QTest::mouseClick(&view_, Qt::LeftButton, {}, QPoint(280, 150));
    QTest::mouseClick(&view_, Qt::LeftButton, {}, QPoint(200, 10));
    ASSERT_EQ(clicked.count(), 2);
    EXPECT_EQ(clicked[0][1].value<std::size_t>(), 0U);
    EXPECT_EQ(clicked[1][1].value<std::size_t>(), 1U);
}

TEST_F(FootprintViewTest, DraggingMovesAndIsNoClick) {
    QSignalSpy clicked(&view_, &FootprintView::FileClicked);
    QTest::mousePress(&view_, Qt::LeftButton, {}, QPoint(120, 150));
    for (const int x : {160, 200, 280}) {
        QMouseEvent move(QEvent::MouseMove, QPointF(x, 150), view_.mapToGlobal(QPointF(x, 150)), Qt::NoButton,
                         Qt::LeftButton, Qt::NoModifier);
        QApplication::sendEvent(&view_, &move);
    }
    QTest::mouseRelease(&view_, Qt::LeftButton, {}, QPoint(280, 150));
    EXPECT_EQ(clicked.count(), 0);
    // What lay at 120 lies at 280 now.
    QTest::mouseClick(&view_, Qt::LeftButton, {}, QPoint(280, 150));
    ASSERT_EQ(clicked.count(), 1);
    EXPECT_EQ(clicked[0][1].value<std::size_t>(), 0U);
}

TEST_F(FootprintViewTest, TenThousandFilesAreDrawnSmoothly) {
    project_.layers[0].files.clear();
    for (int i = 0; i < 10000; ++i) {
        project_.layers[0].files.push_back(Square((i % 100) * 10.0, std::floor(i / 100.0) * 10.0, 10));
    }
    view_.Reload();
    view_.FitAll();
    QElapsedTimer timer;
    timer.start();
    view_.grab();
    EXPECT_LT(timer.elapsed(), 2000);
    QSignalSpy hovered(&view_, &FootprintView::Hovered);
    QTest::mouseMove(&view_, QPoint(200, 150));
    QMouseEvent move(QEvent::MouseMove, QPointF(200, 150), view_.mapToGlobal(QPointF(200, 150)), Qt::NoButton,
                     Qt::NoButton, Qt::NoModifier);
    QApplication::sendEvent(&view_, &move);
    ASSERT_GE(hovered.count(), 1);
    EXPECT_TRUE(hovered.last()[0].toString().contains("tile.las"));
}

class RasterViewTest : public ::testing::Test {
  protected:
    RasterViewTest() { view_.resize(400, 400); }

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
    FootprintView view_{project_};
};

TEST_F(RasterViewTest, PicturesLieWhereTheirRastersDo) {
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

TEST_F(RasterViewTest, RotatedCornersStayEmptyAndAProblemIsTold) {
    const std::wstring path =
        testing::TestRaster(2, 2, GDT_Byte, {255, 255, 255, 255}).Save(folder_, L"a.tif");
    view_.setPalette(QPalette(Qt::black));
    Show({Placed(path, 2, 2, {0, 50, 50, 100, -50, 50}),
          Placed(folder_.Write(L"bad.tif", "no raster"), 9, 9, {0, 1, 0, 0, 0, -1})});
    const QColor ground = view_.palette().color(QPalette::Base);
    EXPECT_NE(ColourAt(200, 130), ground);
    EXPECT_EQ(ColourAt(60, 60), ground);
    QSignalSpy clicked(&view_, &FootprintView::FileClicked);
    QTest::mouseClick(&view_, Qt::LeftButton, {}, QPoint(60, 60));
    EXPECT_EQ(clicked.count(), 0);
    QTest::mouseClick(&view_, Qt::LeftButton, {}, QPoint(200, 130));
    EXPECT_EQ(clicked.count(), 1);
    const QPoint overBad(54, 353);
    QHelpEvent help(QEvent::ToolTip, overBad, view_.mapToGlobal(overBad));
    QApplication::sendEvent(&view_, &help);
    EXPECT_TRUE(QToolTip::text().contains("bad.tif")) << QToolTip::text().toStdString();
    EXPECT_TRUE(QToolTip::text().contains(HostText(41421_lsid, {L""}).trimmed()))
        << QToolTip::text().toStdString();
    QToolTip::hideText();
}

}  // namespace
}  // namespace orvex
