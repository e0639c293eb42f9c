#include "las/companion/QvrFile.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <filesystem>
#include <limits>
#include <set>

#include "host/utilities/testing/LazSamples.h"
#include "las/companion/CompanionState.h"
#include "las/companion/QvrBuilder.h"
#include "las/companion/QvrVerify.h"
#include "las/testing/LasBuilder.h"
#include "las/testing/QvrSample.h"
#include "support/Files.h"
#include "support/Format.h"
#include "support/LDataError.h"
#include "support/Text.h"
#include "support/testing/Bytes.h"
#include "support/testing/TemporaryFolder.h"

namespace orvex {
namespace {

using testing::Bytes;
using ::testing::HasSubstr;
using testing::LasBuilder;
using testing::QvrBytes;

constexpr double kFar = std::numeric_limits<double>::infinity();
constexpr LasExtent kEverywhere{{-kFar, -kFar, -kFar}, {kFar, kFar, kFar}};
constexpr std::uint64_t kAll = std::numeric_limits<std::uint64_t>::max();

/// Text of the failure to open and to verify a QVR file; empty if it is sound.
std::string FailureOf(const std::wstring& path) {
    try {
        Kst::NullProgress progress;
        VerifyQvrPoints(*QvrFile::Open(path), progress);
        return {};
    } catch (const LDataError& error) {
        return error.what();
    }
}

class QvrFileTest : public ::testing::Test {
  protected:
    std::wstring Write(const std::string& bytes) const {
        std::filesystem::remove(folder_.Path() / "a.qvr");
        return folder_.Write(L"a.qvr", bytes);
    }
    std::string Failure(const std::string& bytes) const { return FailureOf(Write(bytes)); }
    std::string With(std::size_t offset, const std::string& bytes) const {
        return std::string(qvr_).replace(offset, bytes.size(), bytes);
    }

    const testing::TemporaryFolder folder_{};
    // 30 by 30 points from (1000, 2000) on, in steps of 1; the scale is a hundredth.
    const std::string las_ = LasBuilder(14, 6).AddPoints(900).Build();
    const std::string qvr_ = QvrBytes(las_, 0);
};

TEST_F(QvrFileTest, SelectsWholeGenerationsOfTheOctantsThatMeetTheView) {
    const auto qvr = QvrFile::Open(Write(qvr_));
    EXPECT_EQ(qvr->Select(kEverywhere, kAll), std::vector<PointRange>({{0, 900}})) << "ranges are joined";
    EXPECT_TRUE(qvr->Select(kEverywhere, 0).empty());
    EXPECT_TRUE(qvr->Select({{2000, 2000, 0}, {3000, 3000, 1000}}, kAll).empty());
    EXPECT_TRUE(qvr->Select({{NAN, NAN, NAN}, {NAN, NAN, NAN}}, kAll).empty());

    const LasExtent corner{{1000, 2000, 0}, {1005, 2005, 1000}};
    for (const LasExtent& view : {kEverywhere, corner}) {
        for (const std::uint64_t most : {std::uint64_t{1}, std::uint64_t{100}, std::uint64_t{899}, kAll}) {
            std::set<std::uint64_t> selected;
            for (const PointRange& range : qvr->Select(view, most)) {
                for (std::uint64_t i = 0; i < range.count; ++i) {
                    EXPECT_TRUE(selected.insert(range.first + i).second);
                }
            }
            EXPECT_LE(selected.size() / (view == corner ? QvrFile::kMostBeside : 1), most);
            ASSERT_FALSE(selected.empty());
            const auto last = std::ranges::find_if(qvr->Entries(), [&](const QvrEntry& entry) {
                return *selected.rbegin() < entry.first + entry.count;
            });
            for (const QvrEntry& entry : qvr->Entries()) {
                const LasExtent box = qvr->BoxOf(entry);
                const bool meets = box.minimum[0] <= view.maximum[0] && box.minimum[1] <= view.maximum[1];
                EXPECT_EQ(selected.contains(entry.first), meets && entry.generation <= last->generation);
                EXPECT_EQ(selected.contains(entry.first), selected.contains(entry.first + entry.count - 1));
            }
            if (view == corner) {
                EXPECT_LT(selected.size(), 300U) << "an octant of depth 2 is 1/16 of the plane";
            }
        }
    }
}

// The coarse generations come in runs that are much larger than a small view.
TEST_F(QvrFileTest, FillsASmallViewAsWellAsALargeOne) {
    const auto qvr = QvrFile::Open(Write(QvrBytes(las_, 0, 0)));
    const LasExtent quarter{{1000, 2000, 0}, {1014.4, 2014.4, 1000}};
    std::uint64_t end = 0;
    for (const PointRange& range : qvr->Select(quarter, 100)) {
        end = range.first + range.count;
    }
    EXPECT_GT(end, 200U);
    EXPECT_LE(end, 800U);
}

// A negative scale turns an axis around.
TEST_F(QvrFileTest, GivesBoxesAndPointsInCoordinates) {
    for (const double scale : {0.01, -0.01}) {
        const LasBuilder las = LasBuilder(12, 3).Scale(scale, scale, scale).Offset(7, 8, 9).AddPoints(50);
        const auto qvr = QvrFile::Open(Write(QvrBytes(las.Build(), 0)));
        std::vector<std::byte> records(std::size_t{50} * qvr->RecordLength());
        qvr->Read({0, 50}, records);
        const std::array least{1000.0, 2000.0, 100.0};
        for (const QvrEntry& entry : qvr->Entries()) {
            const LasExtent box = qvr->BoxOf(entry);
            const auto position =
                qvr->PositionOf(std::span(records).subspan(entry.first * qvr->RecordLength()));
            for (std::size_t axis = 0; axis < 3; ++axis) {
                EXPECT_LE(box.minimum[axis], position[axis]);
                EXPECT_GE(box.maximum[axis], position[axis]);
                EXPECT_GE(position[axis], least[axis] - 1e-6);
            }
        }
    }
}

TEST_F(QvrFileTest, ReadsTheClassificationWithoutFlags) {
    const struct {
        int version, format;
        std::size_t length, at;
        int stored, expected;
    } cases[] = {{12, 1, 28, 15, 0xE6, 6}, {14, 6, 30, 16, 0xC8, 200}};
    for (const auto& c : cases) {
        std::string las = LasBuilder(c.version, c.format).AddPoint(1, 2, 3).Build();
        las[las.size() - c.length + c.at] = static_cast<char>(c.stored);
        const auto qvr = QvrFile::Open(Write(QvrBytes(las, 0)));
        std::vector<std::byte> record(qvr->RecordLength());
        qvr->Read({0, 1}, record);
        EXPECT_EQ(qvr->ClassificationOf(record), c.expected);
    }
}

TEST_F(QvrFileTest, HoldsThePointsOfItsSource) {
    Kst::NullProgress progress;
    const PointSum sum = SumOfPoints(folder_.Write(L"a.las", las_), progress);
    EXPECT_EQ(VerifyQvrPoints(*QvrFile::Open(Write(qvr_)), progress), sum);
    const std::wstring laz = folder_.Name(L"c.laz");
    testing::WriteSample(laz, {.versionMinor = 4, .pointFormat = 6, .recordLength = 30, .points = 60'000},
                         true);
    ASSERT_TRUE(BuildQvr(PlanQvr(laz), {}, progress));
    EXPECT_EQ(CheckCompanion(laz).state, CompanionState::Fresh);
    EXPECT_EQ(VerifyQvrPoints(*QvrFile::Open(QvrPathOf(laz)), progress), SumOfPoints(laz, progress));
    std::string other = las_;
    other.back() = static_cast<char>(other.back() ^ 1);
    EXPECT_NE(SumOfPoints(folder_.Write(L"b.las", other), progress), sum);
    // A point that is there twice does not stand for two.
    constexpr std::size_t kLength = 30;
    other = las_;
    other.replace(other.size() - kLength, kLength, las_, las_.size() - 2 * kLength, kLength);
    EXPECT_NE(SumOfPoints(folder_.Write(L"b.las", other), progress), sum);
}

TEST_F(QvrFileTest, NamesWhatIsWrongWithAFile) {
    const std::size_t index = 375 + 54;
    const std::size_t thinned = index + 81 + 54;
    const std::size_t second = thinned + 12 + 28;  // entry 1
    const std::size_t third = second + 28;
    const auto points = testing::At<std::uint32_t>(qvr_, 96);
    constexpr const char* kIndex = "its index record contradicts";
    constexpr const char* kNoEntries = "it holds 0 of the";
    constexpr const char* kEntry1 = "entry 1 of its index contradicts";
    const struct {
        const char* what;
        std::string bytes;
        const char* message;
    } cases[] = {
        {"sound", qvr_, ""},
        {"empty", "", "no index record"},
        {"text", "companion", "no index record"},
        {"no index", las_, "no index record"},
        {"version", With(index + 1, Bytes<std::uint16_t>(7)), "is a QVR file of version 7; only version 1"},
        {"factor 0", With(index + 3, Bytes<std::uint16_t>(0)), kIndex},
        {"other count", With(index + 21, Bytes<std::uint64_t>(901)), kIndex},
        {"box of 33 bits", With(index + 61, Bytes<std::uint8_t>(33)), kIndex},
        {"compressed", With(104, "\x86"), kIndex},
        {"unknown format", With(104, "\x0B"), kIndex},
        {"short records", With(105, Bytes<std::uint16_t>(29)), kIndex},
        {"empty records", With(105, Bytes<std::uint16_t>(0)), kIndex},
        {"cut", qvr_.substr(0, qvr_.size() - 1), "is cut off: it holds 899 of its 900 points"},
        {"no points", qvr_.substr(0, points), "is cut off: it holds 0 of its 900 points"},
        {"no entries", qvr_.substr(0, thinned), "is cut off: it holds 0 of its 900 points"},
        {"points too early", With(96, Bytes(static_cast<std::uint32_t>(second))), kNoEntries},
        {"too many", With(index + 65, Bytes<std::uint32_t>(0xFFFFFFFF)), "of the 4,294,967,295 entries"},
        {"record's count", With(thinned + 4, Bytes<std::uint32_t>(0xFFFFFFFF)), kNoEntries},
        {"record's size", With(thinned + 8, Bytes<std::uint16_t>(27)), kNoEntries},
        {"record's first", With(thinned, Bytes<std::uint32_t>(1)), kNoEntries},
        {"gap", With(second + 12, Bytes<std::uint64_t>(2)), kEntry1},
        {"empty run", With(second + 20, Bytes<std::uint32_t>(0)), kEntry1},
        {"long run", With(second + 20, Bytes<std::uint32_t>(5121)), kEntry1},
        {"generation", With(second + 24, Bytes<std::uint16_t>(149)), kEntry1},
        {"depth", With(second + 26, Bytes<std::uint16_t>(22)), kEntry1},
        {"outside", With(second, Bytes<std::int32_t>(-5)), kEntry1},
        {"earlier generation", With(third + 24, Bytes<std::uint16_t>(0)), "entry 2 of its index contradicts"},
        {"moved point", With(points, Bytes<std::int32_t>(-5)), "point 0 lies outside the octant of entry 0"},
    };
    for (const auto& c : cases) {
        const std::string failure = Failure(c.bytes);
        EXPECT_EQ(failure.empty(), std::string_view(c.message).empty()) << c.what << ": " << failure;
        EXPECT_THAT(failure, HasSubstr(c.message)) << c.what;
        EXPECT_TRUE(failure.empty() || failure.find("a.qvr'") != std::string::npos) << failure;
    }
    EXPECT_THAT(FailureOf(folder_.Name(L"missing.qvr")), HasSubstr("missing.qvr"));
}

TEST_F(QvrFileTest, FindsPointsThatAreNotInTheirPlaces) {
    auto sample = QvrFile::Open(Write(qvr_));
    const auto run =
        std::ranges::find_if(sample->Entries(), [](const QvrEntry& entry) { return entry.count > 2; });
    ASSERT_NE(run, sample->Entries().end());
    const std::size_t length = sample->RecordLength();
    const std::uint64_t first = run->first + 1;
    const std::size_t offset = sample->Header().OffsetToPoints() + first * length;
    sample.reset();  // an open file cannot be replaced everywhere
    const std::string swapped = qvr_.substr(offset + length, length) + qvr_.substr(offset, length);
    EXPECT_THAT(Failure(With(offset, swapped)),
                HasSubstr("point " + std::to_string(first + 1) + " stands before"));
}

// Nothing is reserved for what a file states, only for what it holds.
TEST_F(QvrFileTest, EveryTruncationAndEveryByteGivesAReadingOrAMessage) {
    const std::string small = QvrBytes(LasBuilder(12, 0).AddPoints(5).Build(), 0);
    for (std::size_t length = 0; length < small.size(); ++length) {
        EXPECT_NE(Failure(small.substr(0, length)), "") << length;
    }
    for (std::size_t i = 0; i < small.size(); ++i) {
        for (const char value : {'\0', '\x7F', '\xFF'}) {
            std::string bytes = small;
            bytes[i] = value;
            Failure(bytes);
        }
    }
}

TEST_F(QvrFileTest, TellsAFreshCompanionFromAnother) {
    const std::wstring las = folder_.Write(L"b.las", las_);
    EXPECT_EQ(CheckCompanion(las).state, CompanionState::None);
    const std::wstring qvr = testing::WriteQvrBeside(las);
    EXPECT_EQ(CheckCompanion(qvr).state, CompanionState::None) << "a companion has none";
    const auto time = std::filesystem::last_write_time(ToPath(las));
    const auto changed = [&](std::size_t offset, char value) {
        std::string bytes = las_;
        bytes[offset] = value;
        return bytes;
    };
    const struct {
        const char* what;
        std::string bytes;
        int seconds;
        std::vector<const char*> reasons;
    } cases[] = {
        {"as it was", las_, 0, {}},
        {"copied to FAT", las_, 2, {}},
        {"from an archive", las_, -1, {}},
        {"touched", las_, 3, {"last change"}},
        {"older", las_, -60, {"last change"}},
        {"longer", las_ + "x", 0, {"size was"}},
        {"replaced in the same second",
         LasBuilder(14, 6).AddPoints(901).Build(),
         0,
         {"size was", "there were 900 points and are 901", "extent"}},
        {"other extent", changed(179 + 2, 'x'), 0, {"extent differs"}},
        {"other header", changed(26, 'x'), 0, {"header differs"}},
    };
    for (const auto& c : cases) {
        folder_.Write(L"b.las", c.bytes);
        std::filesystem::last_write_time(ToPath(las), time + std::chrono::seconds(c.seconds));
        const CompanionFacts facts = CheckCompanion(las);
        EXPECT_EQ(facts.state, c.reasons.empty() ? CompanionState::Fresh : CompanionState::Stale) << c.what;
        const std::string reason = ToUtf8(facts.reason);
        for (const char* expected : c.reasons) {
            EXPECT_THAT(reason, HasSubstr(expected)) << c.what;
        }
        EXPECT_EQ(static_cast<std::size_t>(std::ranges::count(reason, ';')) + (reason.empty() ? 0 : 1),
                  c.reasons.size())
            << reason;
    }
    std::filesystem::last_write_time(ToPath(las), time + std::chrono::seconds(3));
    const auto secondsOf = [](auto at) {
        return UtcSecondText(std::chrono::floor<std::chrono::milliseconds>(at.time_since_epoch()).count());
    };
    const auto now = LastWriteTime(las).value();
    EXPECT_THAT(ToUtf8(CheckCompanion(las).reason),
                HasSubstr(ToUtf8(FormatText(Text(text::kQvrTimeDiffers),
                                            {secondsOf(now - std::chrono::seconds(3)), secondsOf(now)}))));
    folder_.Write(L"b.qvr", "companion");
    EXPECT_EQ(CheckCompanion(las).state, CompanionState::Unreadable);
    EXPECT_THAT(ToUtf8(CheckCompanion(las).reason), HasSubstr("no index record"));
}

// A row of a list does without the index's entries; who builds or draws does not.
TEST_F(QvrFileTest, IsNotFreshWhenItsIndexIsDamaged) {
    const std::wstring las = folder_.Write(L"b.las", las_);
    const std::wstring qvr = testing::WriteQvrBeside(las);
    EXPECT_EQ(ExamineCompanion(las).state, CompanionState::Fresh);
    std::string bytes = testing::ReadFile(qvr);
    bytes.replace(bytes.find("BrightwellMarshSoftware Thinned") - 22 + 54 + 12 + 20, 4, 4, '\xff');
    folder_.Write(L"b.qvr", bytes);
    EXPECT_EQ(CheckCompanion(las).state, CompanionState::Fresh);
    const CompanionFacts facts = ExamineCompanion(las);
    EXPECT_EQ(facts.state, CompanionState::Unreadable);
    EXPECT_THAT(ToUtf8(facts.reason), HasSubstr(ToUtf8(qvr)));
}

// Damaged headers state extents that are no numbers.
TEST_F(QvrFileTest, IsFreshWhateverExtentTheHeaderStates) {
    const std::wstring las =
        folder_.Write(L"b.las", LasBuilder(14, 6).AddPoints(5).Lie(179, std::nan("")).Build());
    testing::WriteQvrBeside(las);
    EXPECT_EQ(CheckCompanion(las).state, CompanionState::Fresh) << ToUtf8(CheckCompanion(las).reason);
}

TEST_F(QvrFileTest, IsThatOfOneOfTheTwoFilesBesideIt) {
    const std::wstring las = folder_.Write(L"b.las", las_);
    testing::WriteQvrBeside(las);
    const std::wstring laz = folder_.Write(L"b.laz", las_ + "x");
    EXPECT_EQ(CheckCompanion(las).state, CompanionState::Fresh);
    const CompanionFacts other = CheckCompanion(laz);
    EXPECT_EQ(other.state, CompanionState::OfOther);
    EXPECT_EQ(other.reason, FormatText(Text(text::kQvrOfOther), {L"b.las"}));
    folder_.Write(L"b.las", las_ + "xy");
    EXPECT_EQ(CheckCompanion(laz).state, CompanionState::Stale) << "of neither";
}

}  // namespace
}  // namespace orvex
