// QVR companions of a record's LAS files: built on the way into the project, and shown on its map.
#include <gtest/gtest.h>

#include <QAbstractButton>
#include <QApplication>
#include <QTest>
#include <QTimer>
#include <QWidget>
#include <filesystem>

#include "host/app/CompanionJobs.h"
#include "host/app/HostText.h"
#include "host/app/HostWindow.h"
#include "host/app/MapView.h"
#include "host/app/RecordIntake.h"
#include "host/app/SampleLasFile.h"
#include "host/app/tests/TestRecord.h"
#include "host/objects/HostClasses.h"
#include "orvexcommon/LasCompanion.h"
#include "support/Files.h"
#include "support/QtText.h"
#include "support/testing/TemporaryFolder.h"

namespace orvex {
namespace {

using testing::kUtm;
using testing::Record;

/// Clicks the button of a text in the next modal window.
class Answer {
  public:
    explicit Answer(StringId button) {
        QObject::connect(&timer_, &QTimer::timeout, &timer_, [this, button] {
            QWidget* const window = QApplication::activeModalWidget();
            for (auto* candidate :
                 window == nullptr ? QList<QAbstractButton*>() : window->findChildren<QAbstractButton*>()) {
                if (!wasAsked_ && candidate->text().remove('&') == HostText(button).remove('&')) {
                    wasAsked_ = true;
                    candidate->click();
                }
            }
        });
        timer_.start(1);
    }
    bool WasAsked() const { return wasAsked_; }

  private:
    QTimer timer_;
    bool wasAsked_ = false;
};

/// The user's stop at one of the times when it is asked for.
class StopAt final : public Kst::ProgressIf {
  public:
    explicit StopAt(int time) : left_(time) {}
    void SetRange(std::uint64_t) override {}
    void SetText(const std::wstring&) override {}
    void SetPosition(std::uint64_t) override {}
    bool IsCancelled() override { return left_ == 0 || --left_ == 0; }

  private:
    int left_;
};

class Companions : public ::testing::Test {
  protected:
    Companions() { WriteTile(0); }

    void WriteTile(double south) {
        SampleTile tile;
        tile.west = 512000;
        tile.south = south;
        tile.side = 120;
        tile.epsg = 25832;
        tile_ = folder_.Write(L"tile.las", MakeSampleLas(tile));
    }
    LasCompanionState State() const { return GetLasCompanions()->Status(tile_).state; }
    IntakeResult Take(std::int32_t pyramid = kPyramidQvr, bool footprints = false, bool writes = true,
                      const std::wstring& name = L"tile.las") {
        Record record;
        record.lasPyramidType = pyramid;
        record.lasLoadSetting = footprints;
        record.lasThinning = 5;
        auto& info = record.AddFile(FromPath(folder_.Path()), name, L"layer");
        info.low = {512000, 0, 150};
        info.high = {512120, 120, 350};
        project_ = {};
        return RecordIntake(project_, ToQString(FromPath(folder_.Path())), writes, &window_).Take(record);
    }
    /// Share of the map's pixels whose colour differs from that of the map without points.
    double ShareOfPoints(const std::function<void(MapView&)>& change = [](MapView&) {}) {
        MapView view(project_);
        view.resize(400, 400);
        view.show();
        view.ShowCrs(kUtm);
        change(view);
        EXPECT_TRUE(QTest::qWaitFor([&] { return !view.IsLoading(); }, 60000));
        const QImage with = view.grab().toImage();
        Project outlines = project_;
        outlines.layers[0].files[0].footprintOnly = true;
        MapView empty(outlines);
        empty.resize(400, 400);
        empty.show();
        empty.ShowCrs(kUtm);
        change(empty);
        const QImage without = empty.grab().toImage();
        int differ = 0;
        for (int i = 0; i < 390 * 390; ++i) {  // without the frame of a view that has the focus
            const QPoint pixel(5 + i % 390, 5 + i / 390);
            differ += with.pixel(pixel) != without.pixel(pixel) ? 1 : 0;
        }
        return differ / (390.0 * 390.0);
    }

    testing::TemporaryFolder folder_;
    std::wstring tile_;
    Project project_;
    QWidget window_;
};

TEST_F(Companions, AreBuiltWhenTheRecordAsks) {
    const struct {
        const char* what;
        std::int32_t pyramid;
        bool footprints, writes, built;
    } cases[] = {{"none", kPyramidNone, false, true, false},
                 {"in place", kPyramidOrvexLas, false, true, false},
                 {"footprints only", kPyramidQvr, true, true, false},
                 {"a folder that is not to be written to", kPyramidQvr, false, false, false},
                 {"companions", kPyramidQvr, false, true, true}};
    for (const auto& c : cases) {
        const IntakeResult result = Take(c.pyramid, c.footprints, c.writes);
        EXPECT_EQ(State(), c.built ? LasCompanionState::Fresh : LasCompanionState::None) << c.what;
        EXPECT_EQ(result.status.contains(HostText(text::kStatusCompanionsBuilt, {1})), c.built) << c.what;
        EXPECT_EQ(result.places.size(), 1U) << c.what;
        EXPECT_TRUE(result.news.empty()) << c.what;
    }
    EXPECT_EQ(project_.layers[0].files[0].thinning, 5);
    EXPECT_EQ(folder_.Entries(), 2U) << "nothing temporary";
    const IntakeResult again = Take();
    EXPECT_FALSE(again.status.contains(HostText(text::kStatusCompanionsBuilt, {1}))) << "it is there";
}

TEST_F(Companions, AreReplacedOnlyWithPermission) {
    Take();
    WriteTile(1000);
    const std::string old = testing::ReadFile(folder_.Name(L"tile.qvr"));
    {
        const Answer keep(text::kCompanionsKeep);
        const IntakeResult result = Take();
        EXPECT_TRUE(keep.WasAsked());
        ASSERT_EQ(result.news.size(), 1U);
        EXPECT_EQ(result.news[0].heading, Text(text::kCompanionsNotUsed));
        EXPECT_EQ(State(), LasCompanionState::Stale);
        EXPECT_TRUE(testing::ReadFile(folder_.Name(L"tile.qvr")) == old);
    }
    const LasCompanionPlan plan = GetLasCompanions()->Plan(tile_, {});
    EXPECT_FALSE(plan.problem.empty()) << "it exists";
    Kst::NullProgress progress;
    EXPECT_EQ(GetLasCompanions()->Build(plan, {}, progress).end, LasCompanionEnd::Failed);
    EXPECT_TRUE(testing::ReadFile(folder_.Name(L"tile.qvr")) == old);
    EXPECT_EQ(ShareOfPoints(), 0) << "a stale companion is not shown";
    for (const std::string& there : {old, std::string("no companion")}) {
        folder_.Write(L"tile.qvr", there);
        const Answer replace(text::kCompanionsReplace);
        Take();
        EXPECT_TRUE(replace.WasAsked());
        EXPECT_EQ(State(), LasCompanionState::Fresh);
    }
}

TEST_F(Companions, OfAnotherFileAreLeftToIt) {
    Take();
    const std::string good = testing::ReadFile(folder_.Name(L"tile.qvr"));
    const std::wstring twin = folder_.Write(L"tile.laz", testing::ReadFile(tile_) + "x");
    const Answer replace(text::kCompanionsReplace);
    const IntakeResult result = Take(kPyramidQvr, false, true, L"tile.laz");
    EXPECT_FALSE(replace.WasAsked());
    ASSERT_EQ(result.news.size(), 1U);
    EXPECT_EQ(result.news[0].heading, Text(text::kCompanionsNotUsed));
    EXPECT_TRUE(testing::ReadFile(folder_.Name(L"tile.qvr")) == good);

    // Permission is for one file each; of twins that are built in one go the first gets the companion.
    folder_.Write(L"tile.qvr", "no companion");
    const std::wstring other = folder_.Write(L"other.las", testing::ReadFile(tile_));
    folder_.Write(L"other.qvr", "theirs");
    Kst::NullProgress progress;
    const CompanionResult built =
        BuildCompanions({{tile_, true}, {other, false}, {twin, true}}, {}, progress);
    EXPECT_EQ(built.built, 1U);
    EXPECT_EQ(built.failures.size(), 2U);
    EXPECT_EQ(State(), LasCompanionState::Fresh);
    EXPECT_EQ(testing::ReadFile(folder_.Name(L"other.qvr")), "theirs");
}

TEST_F(Companions, OfAFileThatWasDecompressedIsThatOfItsPoints) {
    Record record;
    record.lasPyramidType = kPyramidQvr;
    folder_.Write(L"tile.laz", "compressed");
    record.AddFile(FromPath(folder_.Path()), L"tile.laz", L"layer").name = tile_;
    RecordIntake(project_, ToQString(FromPath(folder_.Path())), true, &window_).Take(record);
    EXPECT_EQ(State(), LasCompanionState::Fresh);
    const LayerFile& file = project_.layers.at(0).files.at(0);
    EXPECT_EQ(file.path, folder_.Name(L"tile.laz"));
    EXPECT_EQ(file.PointsPath(), tile_);
}

TEST_F(Companions, AFileWithoutOneIsAddedAllTheSame) {
    folder_.Write(L"cut.las", testing::ReadFile(tile_).substr(0, 5000));
    const IntakeResult result = Take(kPyramidQvr, false, true, L"cut.las");
    EXPECT_EQ(result.places.size(), 1U);
    ASSERT_EQ(result.news.size(), 1U);
    EXPECT_EQ(result.news[0].heading, Text(text::kCompanionsFailed));
    EXPECT_EQ(folder_.Entries(), 2U) << "nothing is left";
}

TEST_F(Companions, ThatTheMapShowsAreReplaced) {
    const PrivateSettings settings(ToPath(folder_.Name(L"settings")));
    HostPreferences preferences{QString()};
    HostWindow window(preferences);
    window.OpenProject(ToQString(folder_.Name(L"project")));
    const MapView& map = *window.findChild<MapView*>("footprints");
    const auto take = [&](const std::wstring& name) {
        Record record;
        record.lasPyramidType = kPyramidQvr;
        auto& info = record.AddFile(FromPath(folder_.Path()), name, L"layer");
        info.name = tile_;
        info.high = {512120, 120, 350};
        info.low = {512000, 0, 150};
        window.TakeRecord(record);
        EXPECT_EQ(State(), LasCompanionState::Fresh) << ToQString(name).toStdString();
        EXPECT_TRUE(QTest::qWaitFor([&] { return !map.IsLoading(); }, 60000));
    };
    take(L"tile.las");
    WriteTile(1000);
    folder_.Write(L"tile.laz", "compressed");
    const Answer replace(text::kCompanionsReplace);
    take(L"tile.laz");  // from which tile.las was decompressed again
    EXPECT_TRUE(replace.WasAsked());
}

TEST_F(Companions, LeaveNothingWhenTheUserStops) {
    StopAt atOnce(0);
    EXPECT_TRUE(CheckCompanions({tile_}, atOnce).stopped);
    StopAt never(-1);
    EXPECT_FALSE(CheckCompanions({tile_}, never).stopped);
    bool stopped = true;
    for (int time = 1; stopped; time *= 2) {
        StopAt progress(time);
        const CompanionResult result = BuildCompanions({{tile_, false}}, {}, progress);
        stopped = result.built == 0;
        EXPECT_TRUE(result.failures.empty());
        EXPECT_TRUE(result.stopped || !stopped) << time;
        EXPECT_EQ(folder_.Entries(), stopped ? 1U : 2U) << time;
        EXPECT_EQ(State(), stopped ? LasCompanionState::None : LasCompanionState::Fresh) << time;
    }
}

TEST_F(Companions, ShowTheirPointsOnTheMap) {
    Take();
    // The file fills 320 x 320 of the 400 x 400 pixels.
    EXPECT_GT(ShareOfPoints(), 0.6);
    EXPECT_GT(ShareOfPoints([](MapView& view) { QTest::keyClicks(&view, "++++"); }), 0.8) << "closer";
    EXPECT_GT(ShareOfPoints([](MapView& view) { QTest::keyClicks(&view, "------"); }), 0.03) << "farther";
    project_.layers[0].files[0].footprintOnly = true;
    EXPECT_EQ(ShareOfPoints(), 0);
}

TEST_F(Companions, GiveTheirPoints) {
    Take();
    std::wstring reason;
    const std::unique_ptr<LasCompanion> companion = GetLasCompanions()->Open(tile_, reason);
    ASSERT_NE(companion, nullptr) << ToQString(reason).toStdString();
    EXPECT_EQ(companion->PointCount(), 120U * 120U);
    std::vector<LasPoint> points;
    EXPECT_TRUE(companion->Read({0, UINT64_MAX}, points));
    ASSERT_EQ(points.size(), 120U * 120U) << "cut off at the last";
    for (const LasPoint& point : points) {
        for (std::size_t axis = 0; axis < 3; ++axis) {
            const double value = std::array{point.x, point.y, point.z}[axis];
            EXPECT_GE(value, companion->Minimum()[axis] - 1e-6);
            EXPECT_LE(value, companion->Maximum()[axis] + 1e-6);
        }
    }
    EXPECT_TRUE(companion->Select({0, 0, 1, 1}, 1000).empty()) << "beside it";
    EXPECT_TRUE(companion->Read({UINT64_MAX, UINT64_MAX}, points));
    EXPECT_EQ(points.size(), 120U * 120U);
    EXPECT_EQ(GetLasCompanions()->Open(folder_.Name(L"gone.las"), reason), nullptr);
    EXPECT_FALSE(GetLasCompanions()->Plan(folder_.Name(L"gone.las"), {}).problem.empty());
}

}  // namespace
}  // namespace orvex
