#include "las/LasPointViews.h"

#include <gtest/gtest.h>

#include <limits>

#include "las/testing/LasFiles.h"
#include "support/LDataError.h"
#include "support/testing/TestSystem.h"

namespace orvex {
namespace {

using testing::LasBuilder;

/// Expects every point in exactly the view that ViewOf gives, and nothing else in the views.
void ExpectWholeCover(const LasPointViews& points) {
    std::uint64_t next = 0;
    for (std::uint64_t i = 0; i < points.ViewCount(); ++i) {
        const LasPointView view = points.Map(i);
        ASSERT_EQ(view.FirstPoint(), next);
        if (view.Count() > 0) {
            ASSERT_EQ(points.ViewOf(view.FirstPoint()), i);
            ASSERT_EQ(points.ViewOf(view.FirstPoint() + view.Count() - 1), i);
            ASSERT_EQ(view.Records().size() % view.Count(), 0U);
        }
        next += view.Count();
    }
    EXPECT_EQ(next, points.PointCount());
    EXPECT_THROW(points.Map(points.ViewCount()), LDataError);
}

class LasPointViewsTest : public ::testing::Test {
  protected:
    std::unique_ptr<LASFile> OpenMapped(const LasBuilder& builder, bool readOnly = true) const {
        return LASFile::Open(folder_.Write(builder), readOnly, false);
    }

    const testing::LasFolder folder_{};
};

TEST_F(LasPointViewsTest, CoverEveryPointOnce) {
    const std::uint64_t granularity = LasPointViews::Granularity();
    EXPECT_EQ(granularity, 4 * MappedFile::AllocationGranularity());
    // About three views; the first record begins at odd places in its view.
    for (const std::size_t gap : {std::size_t{0}, std::size_t{13}, granularity - 228, granularity}) {
        const auto count = static_cast<std::size_t>(3 * granularity / 28);
        const auto file = OpenMapped(LasBuilder(12, 1).AddPoints(count).Gap(std::string(gap, 'g')));
        ASSERT_NE(file->Points(), nullptr);
        EXPECT_EQ(file->Points()->PointCount(), count);
        ExpectWholeCover(*file->Points());
        const std::uint64_t point = count - 5;
        const LasPointView view = file->Points()->Map(file->Points()->ViewOf(point));
        EXPECT_NEAR(view.Position(point)[2], 100 + 0.01 * static_cast<double>(point), 1e-6);
        EXPECT_EQ(view.Record(point).size(), 28U);
        EXPECT_TRUE(view.Record(count).empty());
        EXPECT_EQ(view.Frame().scale[0], 0.01);
        EXPECT_EQ(view.Frame().extent.minimum, file->Minimum());
    }
}

TEST_F(LasPointViewsTest, HoldWholeRecordsOfTheFileOnly) {
    const auto pointsOf = [&](const LasBuilder& builder) {
        const auto file = OpenMapped(builder);
        return file->Points() == nullptr ? -1 : static_cast<std::int64_t>(file->Points()->PointCount());
    };
    const LasBuilder ten = LasBuilder(12, 0).AddPoints(10);
    EXPECT_EQ(pointsOf(ten), 10);
    EXPECT_EQ(pointsOf(LasBuilder(ten).Cut(227 + 59)), 2);
    EXPECT_EQ(pointsOf(LasBuilder(ten).Lie<std::uint32_t>(107, 0xFFFFFFFF)), 10);
    EXPECT_EQ(pointsOf(LasBuilder(ten).Lie<std::uint32_t>(96, 0xFFFFFFFF)), 0);
    EXPECT_EQ(pointsOf(LasBuilder(ten).Lie<std::uint16_t>(105, 0)), -1);
    EXPECT_EQ(pointsOf(LasBuilder(ten).MarkCompressed()), -1);
    EXPECT_EQ(pointsOf(LasBuilder(12, 0)), 0);
}

TEST_F(LasPointViewsTest, TakeRecordsLongerThanAView) {
    LasBuilder builder(12, 0);
    builder.Append(std::string(std::size_t{5} * 65535, 'p')).Lie<std::uint16_t>(105, 65535);
    const auto file = OpenMapped(builder.Lie<std::uint32_t>(107, 5));
    EXPECT_EQ(file->Points()->PointCount(), 5U);
    ExpectWholeCover(*file->Points());
}

TEST_F(LasPointViewsTest, ReachBeyondFourGigabytes) {
    constexpr std::uint64_t kPoints = 200'000'000;
    constexpr std::uint64_t kStart = 375;
    constexpr std::uint64_t kLength = 30;
    const std::wstring path = folder_.Write(LasBuilder(14, 6).Lie(247, kPoints));
    testing::GrowSparse(path, kStart + kPoints * kLength);
    testing::WriteAt(path, kStart + (kPoints - 1) * kLength,
                     testing::Bytes(std::int32_t{100}, std::int32_t{200}, std::int32_t{300}));

    const auto file = LASFile::Open(path, true, false);
    ASSERT_EQ(file->Points()->PointCount(), kPoints);
    const LasPointView view = file->Points()->Map(file->Points()->ViewOf(kPoints - 1));
    EXPECT_EQ(view.Position(kPoints - 1), (std::array<double, 3>{1, 2, 3}));
    EXPECT_EQ(view.FirstPoint() + view.Count(), kPoints);
}

TEST_F(LasPointViewsTest, EditFilesOpenedReadWrite) {
    OpenMapped(LasBuilder(12, 0).AddPoints(3), false)->Points()->Map(0).Record(1)[0] = std::byte{0x5A};
    EXPECT_EQ(testing::ReadFile(folder_.Name(L"a.las"))[227 + 20], 0x5A);
}

TEST(Octant, SplitsAtTheMidpoints) {
    const LasExtent extent{{0, -10, 100}, {8, 10, 104}};
    const LasExtent expected[8] = {
        {{0, -10, 100}, {4, 0, 102}}, {{0, -10, 102}, {4, 0, 104}}, {{0, 0, 100}, {4, 10, 102}},
        {{0, 0, 102}, {4, 10, 104}},  {{4, -10, 100}, {8, 0, 102}}, {{4, -10, 102}, {8, 0, 104}},
        {{4, 0, 100}, {8, 10, 102}},  {{4, 0, 102}, {8, 10, 104}},
    };
    for (unsigned child = 0; child < 8; ++child) {
        EXPECT_EQ(Octant(extent, child), expected[child]) << child;
    }
    constexpr double kMost = std::numeric_limits<double>::max();
    EXPECT_EQ(Octant({{kMost / 2, 0, 0}, {kMost, 0, 0}}, 0).maximum[0], kMost / 4 + kMost / 2);
}

}  // namespace
}  // namespace orvex
