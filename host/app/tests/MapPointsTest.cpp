#include "host/app/MapPoints.h"

#include <gtest/gtest.h>

#include <QSemaphore>
#include <QTest>
#include <atomic>
#include <cmath>
#include <limits>
#include <set>
#include <string>

#include "host/app/PointCanvas.h"

namespace orvex {
namespace {

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();

/// Pixels that are not transparent.
int Filled(const QImage& image) {
    int filled = 0;
    for (int row = 0; row < image.height(); ++row) {
        for (int column = 0; column < image.width(); ++column) {
            filled += qAlpha(image.pixel(column, row)) == 255 ? 1 : 0;
        }
    }
    return filled;
}

TEST(PointCanvas, ShowsTheHighestPointOfEachPixel) {
    constexpr std::uint8_t kGround = 2;
    constexpr std::uint8_t kBuilding = 6;
    const QRectF world(100, 200, 4, 2);
    const auto imageOf = [&](std::vector<LasPoint> points) {
        PointCanvas canvas(world, {4, 2}, 0, 10);
        canvas.SetSpacing(0.5);
        canvas.Draw(points);
        return canvas.Image();
    };
    const LasPoint high{100.5, 201.5, 10, kBuilding};
    const LasPoint low{100.4, 201.6, 0, kGround};
    const QImage image = imageOf({low, high, low});
    EXPECT_EQ(Filled(image), 1);
    EXPECT_EQ(image.pixel(0, 0), imageOf({high}).pixel(0, 0)) << "north is up";
    EXPECT_NE(image.pixel(0, 0), imageOf({low}).pixel(0, 0));
    EXPECT_EQ(Filled(imageOf({{103.9, 200.1, 5, 255}})), 1) << "a class without a name";
    for (const auto& [x, y] : {std::pair{99.9, 201.0},
                               {104.0, 201.0},
                               {101.0, 202.1},
                               {kNaN, 201.0},
                               {101.0, std::numeric_limits<double>::infinity()},
                               {1e300, -1e300}}) {
        EXPECT_TRUE(imageOf({{x, y, 5, kGround}}).isNull()) << x << " " << y;
    }
    EXPECT_TRUE(imageOf({{101, 201, kNaN, 0}}).isNull());
    PointCanvas large(world, {40, 20}, 5, 5);
    large.SetSpacing(std::numeric_limits<double>::infinity());
    large.Draw(std::vector<LasPoint>{{103.95, 200.05, 5, 0}, {100.01, 201.99, 5, 0}});
    EXPECT_GT(Filled(large.Image()), 10) << "at the edges, cut off";
}

/// 1000 x 1000 points one unit apart from (0, 0) on, in the order of their bits reversed.
class Lattice final : public LasCompanion {
  public:
    struct Use {
        std::uint64_t asked = 0;     ///< points that the latest view was drawn with, at most
        std::uint64_t selected = 0;  ///< points in all, also of the next
        std::uint64_t read = 0;
        int open = 0;
    };

    explicit Lattice(Use& use) : use_(use) { ++use_.open; }
    ~Lattice() override { --use_.open; }

    std::uint64_t PointCount() const override { return kSide * kSide; }
    std::array<double, 3> Minimum() const override { return {0, 0, 0}; }
    std::array<double, 3> Maximum() const override { return {kSide, kSide, 1}; }
    /// Of every tile of 25 x 25 that meets the extent, as many points.
    std::vector<LasPointRange> Select(const std::array<double, 4>& extent,
                                      std::uint64_t mostPoints) const override {
        use_.asked = mostPoints;
        std::vector<std::uint64_t> tiles;
        for (std::uint64_t tile = 0; tile < kTiles * kTiles; ++tile) {
            const auto [x, y] = CornerOf(tile);
            if (x <= extent[2] && x + kTile >= extent[0] && y <= extent[3] && y + kTile >= extent[1]) {
                tiles.push_back(tile);
            }
        }
        std::vector<LasPointRange> ranges;
        for (const std::uint64_t tile : tiles) {
            ranges.push_back({tile * kPerTile, std::min<std::uint64_t>(kPerTile, mostPoints / tiles.size())});
            use_.selected += ranges.back().count;
        }
        return ranges;
    }
    bool Read(const LasPointRange& range, std::vector<LasPoint>& points) const override {
        use_.read += range.count;
        for (std::uint64_t i = range.first; i < range.first + range.count; ++i) {
            const auto [x, y] = CornerOf(i / kPerTile);
            const std::uint64_t place = (i % kPerTile) * 353 % kPerTile;  // spread over the tile
            const std::uint64_t row = place / kTile;
            points.push_back(
                {x + static_cast<double>(place % kTile) + 0.5, y + static_cast<double>(row) + 0.5, 0.5, 2});
        }
        return true;
    }

  private:
    static constexpr std::uint64_t kSide = 1000;
    static constexpr std::uint64_t kTile = 25;
    static constexpr std::uint64_t kTiles = kSide / kTile;
    static constexpr std::uint64_t kPerTile = kTile * kTile;

    static std::pair<double, double> CornerOf(std::uint64_t tile) {
        const std::uint64_t row = tile / kTiles;
        return {static_cast<double>(tile % kTiles * kTile), static_cast<double>(row * kTile)};
    }

    Use& use_;
};

/// Files whose names begin with "lattice" have one; "stale" has one that is not used; others have none.
class FakeCompanions final : public LasCompanions {
  public:
    LasCompanionStatus Status(const std::wstring&) const override { return {}; }
    LasCompanionPlan Plan(const std::wstring&, const LasCompanionOptions&) const override { return {}; }
    LasCompanionResult Build(const LasCompanionPlan&, const LasCompanionOptions&,
                             Kst::ProgressIf&) const override {
        return {};
    }
    std::unique_ptr<LasCompanion> Open(const std::wstring& path, std::wstring& reason) const override {
        ++opened;
        onOpen();
        reason = path == L"stale" ? L"another size" : L"";
        return path.starts_with(L"lattice") ? std::make_unique<Lattice>(use) : nullptr;
    }

    mutable Lattice::Use use;
    mutable int opened = 0;
    std::function<void()> onOpen = [] {};
};

struct MapPointsTest : ::testing::Test {
    MapPointsTest() {
        points.SetFiles(
            {{L"lattice", kAll, 0, 1, 20}, {L"stale", kAll, 0, 1, 20}, {L"none", kAll, 0, 1, 20}});
    }
    /// So many files of an extent.
    void SetLattices(int count, const QRectF& extent) {
        std::vector<PointFile> files;
        files.reserve(static_cast<std::size_t>(count));
        for (int i = 0; i < count; ++i) {
            files.push_back({L"lattice" + std::to_wstring(i), extent, 0, 1, 20});
        }
        points.SetFiles(std::move(files));
    }
    /// Shows a view and waits until it is complete.
    void Draw(const QRectF& world, const QSize& pixels) {
        points.Show(world, pixels);
        ASSERT_TRUE(QTest::qWaitFor([this] { return !points.IsLoading(); }, 60000));
    }

    static constexpr QRectF kAll{0, 0, 1000, 1000};

    FakeCompanions companions;
    std::atomic<std::int64_t> now = 0;  ///< milliseconds
    MapPoints points{companions, [this] { return now.load(); }};
};

TEST_F(MapPointsTest, CoversAFileAtEveryZoom) {
    const struct {
        QRectF world;
        double covered;  ///< least share of its pixels
        double most;     ///< greatest
    } cases[] = {
        {{-500, -500, 2000, 2000}, 0.24, 0.27},  // a quarter of the view is the file
        {{0, 0, 1000, 1000}, 0.9, 1},
        {{400, 400, 200, 200}, 0.9, 1},
        {{500, 500, 20, 20}, 0.02, 0.2},  // single points
        {{-50, -50, 40, 40}, 0, 0},       // beside it
    };
    for (const auto& c : cases) {
        Draw(c.world, {300, 300});
        const double covered = Filled(points.Picture().image) / 90000.0;
        EXPECT_GE(covered, c.covered) << c.world.left();
        EXPECT_LE(covered, c.most) << c.world.left();
        EXPECT_LE(companions.use.asked, 2U * 300 * 300);
        if (c.most > 0) {
            EXPECT_EQ(points.Picture().world, c.world);
        }
    }
}

TEST_F(MapPointsTest, ReadsEachPointOfASmallSelectionOnce) {
    Draw(kAll, {100, 100});
    EXPECT_GT(companions.use.read, 0U);
    EXPECT_EQ(companions.use.read, companions.use.selected);
}

TEST_F(MapPointsTest, DrawsFilesWithoutAnArea) {
    for (const QRectF& extent : {QRectF(500, 0, 0, 1000), QRectF(0, 500, 1000, 0)}) {
        points.SetFiles({{L"lattice", extent, 0, 1, 20}});
        Draw({490, 490, 20, 20}, {300, 300});
        EXPECT_FALSE(points.Picture().image.isNull());
        EXPECT_EQ(companions.use.asked, 2U * 300) << "a pixel wide";
    }
    points.SetFiles({{L"lattice", {500, 500, 0, 0}, 0, 1, 20}});
    Draw({490, 490, 20, 20}, {300, 300});
    EXPECT_EQ(companions.use.asked, 2U) << "a single point";
}

TEST_F(MapPointsTest, HeightsThatCannotBeChangeNoColour) {
    Draw({490, 490, 20, 20}, {300, 300});
    const QImage usual = points.Picture().image;
    for (const double wrong : {kNaN, -1e300, -std::numeric_limits<double>::infinity()}) {
        points.SetFiles({{L"none", kAll, wrong, 1, 20}, {L"lattice", kAll, 0, 1, 20}});
        Draw({490, 490, 20, 20}, {300, 300});
        EXPECT_TRUE(points.Picture().image == usual) << wrong;
    }
}

TEST_F(MapPointsTest, KeepsManyCompanionsOpen) {
    constexpr int kFiles = 300;
    SetLattices(kFiles, {0, 0, 20, 20});
    Draw({0, 0, 20, 20}, {20, 20});
    EXPECT_GE(companions.opened, kFiles);
    companions.opened = 0;
    Draw({1, 1, 20, 20}, {20, 20});
    EXPECT_LE(companions.opened, 100) << "with few points, then with all";
    EXPECT_GT(companions.use.open, kFiles / 2);
    QSemaphore isDrawn;
    companions.onOpen = [&] { isDrawn.release(); };
    points.Show({2, 2, 20, 20}, {20, 20});
    EXPECT_TRUE(isDrawn.tryAcquire(1, 60000));
    points.Close();
    EXPECT_EQ(companions.use.open, 0) << "they can be replaced";
}

TEST_F(MapPointsTest, GivesUpAViewOnASlowDriveForALaterOne) {
    QSemaphore isDrawn;
    QSemaphore isOutdated;
    companions.onOpen = [&] {
        now += 20;
        if (companions.opened == 3) {
            isDrawn.release();
            EXPECT_TRUE(isOutdated.tryAcquire(1, 60000));
        }
    };
    SetLattices(100, {0, 0, 20, 20});
    points.Show({0, 0, 20, 20}, {20, 20});
    EXPECT_TRUE(isDrawn.tryAcquire(1, 60000));
    points.Show({500, 500, 20, 20}, {20, 20});
    isOutdated.release();
    EXPECT_TRUE(QTest::qWaitFor([this] { return !points.IsLoading(); }, 60000));
    EXPECT_LT(companions.opened, 20);
    EXPECT_EQ(points.Picture().world, QRectF(500, 500, 20, 20));
}

TEST_F(MapPointsTest, DrawsAViewWithFewPointsFirst) {
    std::vector<int> filled;
    QObject::connect(&points, &MapPoints::Changed, &points,
                     [&] { filled.push_back(Filled(points.Picture().image)); });
    Draw({0, 0, 1000, 1000}, {800, 800});
    ASSERT_EQ(filled.size(), 2U);
    EXPECT_GT(filled[0], 800 * 800 / 3) << "few points are drawn larger";
    EXPECT_GT(filled[1], filled[0]);
    filled.clear();
    Draw({0, 0, 1000, 1000}, {100, 100});
    EXPECT_EQ(filled.size(), 1U) << "few points at once";
}

TEST_F(MapPointsTest, TellsWhichCompanionsAreNotUsed) {
    EXPECT_EQ(points.UseOf(L"lattice"), nullptr);
    Draw({0, 0, 1000, 1000}, {100, 100});
    EXPECT_TRUE(points.UseOf(L"lattice")->isShown);
    EXPECT_FALSE(points.UseOf(L"stale")->isShown);
    EXPECT_EQ(points.UseOf(L"stale")->reason, "another size");
    EXPECT_TRUE(points.UseOf(L"none")->reason.isEmpty());
    points.SetFiles({{L"stale", {0, 0, 1000, 1000}, 0, 1, 20}});
    EXPECT_TRUE(points.Picture().image.isNull()) << "of files that are gone";
    Draw({0, 0, 1000, 1000}, {100, 100});
    EXPECT_TRUE(points.Picture().image.isNull());
    EXPECT_EQ(points.UseOf(L"lattice"), nullptr);
}

TEST_F(MapPointsTest, EndsAtTheLatestOfManyViews) {
    for (int i = 0; i < 50; ++i) {
        points.Show(QRectF(i, i, 900, 900), {500, 500});
    }
    Draw({10, 20, 30, 40}, {50, 60});
    EXPECT_EQ(points.Picture().world, QRectF(10, 20, 30, 40));
    EXPECT_EQ(points.Picture().image.size(), QSize(50, 60));
    points.Show({0, 0, 1000, 1000}, {800, 800});  // and goes while it is drawn
}

}  // namespace
}  // namespace orvex
