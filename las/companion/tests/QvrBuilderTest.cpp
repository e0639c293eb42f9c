#include "las/companion/QvrBuilder.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>

#include "host/utilities/testing/LazSamples.h"
#include "las/companion/QvrFile.h"
#include "las/companion/QvrSizes.h"
#include "las/companion/QvrVerify.h"
#include "las/companion/tests/QvrClouds.h"
#include "support/Format.h"
#include "support/LDataError.h"
#include "support/Text.h"
#include "support/testing/Scripted.h"

namespace orvex {
namespace {

using testing::BuiltQvr;
using testing::Cloud;
using testing::CloudParts;
using testing::ExpectedOrder;
using testing::LasBuilder;
using testing::LasFolder;

using Position = std::array<double, 3>;

QvrSettings With(unsigned threads, std::uint64_t memory, bool isRandom = true) {
    QvrSettings settings;
    settings.threads = threads;
    settings.memory = memory;
    settings.randomOrder = isRandom;
    settings.factor = 1;
    settings.replaceExisting = true;
    return settings;
}

constexpr std::uint64_t kMuch = std::uint64_t{64} << 20U;
constexpr std::uint64_t kLittle = std::uint64_t{64} << 10U;

QvrPosition PositionOf(const std::string& record) {
    return {testing::At<std::int32_t>(record, 0), testing::At<std::int32_t>(record, 4),
            testing::At<std::int32_t>(record, 8)};
}

QvrBox BoxAround(const std::vector<std::string>& records, const std::array<double, 3>& scale) {
    QvrPosition low = PositionOf(records.front());
    QvrPosition high = low;
    for (const std::string& record : records) {
        const QvrPosition position = PositionOf(record);
        for (std::size_t axis = 0; axis < 3; ++axis) {
            low[axis] = std::min(low[axis], position[axis]);
            high[axis] = std::max(high[axis], position[axis]);
        }
    }
    return QvrBox::Around(low, high, scale);
}

/// The companion's points, entries and generations against the definition of their order.
void ExpectDefinedOrder(const std::wstring& path, const std::vector<std::string>& source) {
    const auto qvr = QvrFile::Open(path);
    if (!source.empty()) {
        EXPECT_EQ(qvr->Index().box, BoxAround(source, qvr->Header().Scale())) << "whatever the header states";
    }
    const ExpectedOrder expected(source, qvr->Index());
    const CloudParts built(testing::ReadFile(path));
    EXPECT_EQ(built.records, expected.records);
    std::vector<std::uint16_t> generations;
    for (const QvrEntry& entry : qvr->Entries()) {
        generations.insert(generations.end(), entry.count, entry.generation);
        EXPECT_TRUE(qvr->Index().CanHave(entry.count, entry.depth));
        EXPECT_EQ(entry.position, PositionOf(expected.records[entry.first]));
    }
    EXPECT_EQ(generations, expected.generations);
    Kst::NullProgress progress;
    EXPECT_EQ(VerifyQvrPoints(*qvr, progress), SumOfPoints(path, progress)) << "octants and order";
}

TEST(QvrBuilder, KeepsEveryByteOfEveryFormat) {
    struct {
        int version, format;
        std::uint8_t extraBytes;
    } const cases[] = {{10, 0, 0}, {11, 1, 0}, {12, 0, 0}, {12, 2, 5}, {12, 3, 0}, {13, 4, 0},  {13, 5, 3},
                       {14, 1, 0}, {14, 6, 0}, {14, 7, 4}, {14, 8, 0}, {14, 9, 0}, {14, 10, 19}};
    const LasFolder folder;
    for (const auto& [version, format, extraBytes] : cases) {
        SCOPED_TRACE(::testing::Message() << version << ", format " << format);
        Cloud cloud{version, format, 3000, extraBytes};
        cloud.change = [version = version](LasBuilder& builder) {
            builder.AddVlr("someone", 7, "kept").AddVlr("copc", 1, "not").AddVlr("laszip encoded", 22204, "");
            if (version == 14) {
                builder.AddEvlr("someone", 8, "kept, too").AddEvlr("LASF_Spec", 65535, "packets");
            }
        };
        const std::wstring path = folder.TemporaryFolder::Write(L"a.las", cloud.Bytes());
        BuiltQvr(path, With(2, kMuch));
        ExpectDefinedOrder(folder.Name(L"a.qvr"), CloudParts(cloud.Bytes()).records);
        const auto source = LASFile::Open(path, true, true);
        const auto built = LASFile::Open(folder.Name(L"a.qvr"), true, true);
        EXPECT_EQ(built->GetPointCount(), 3000U);
        EXPECT_EQ(built->PointFormat(), format);
        EXPECT_EQ(built->GetVersionCode(), source->GetVersionCode());
        EXPECT_EQ(built->GetExtraBytes().Attributes().size(), extraBytes == 0 ? 0U : 1U);
        ASSERT_EQ(built->GetVLRs().size(), extraBytes == 0 ? 3U : 4U) << "index, one record of entries, kept";
        EXPECT_TRUE(built->GetVLRs().front().Is(kCompanionUserId, kIndexRecordId));
        EXPECT_EQ(std::ranges::count(built->GetVLRs(), std::string("someone"), &VlrView::UserId), 1);
        ASSERT_EQ(built->GetEVLRs().size(), version == 14 ? 1U : 0U);
        EXPECT_EQ(testing::ReadFile(folder.Name(L"a.qvr")).ends_with("kept, too"), version == 14);
    }
    EXPECT_EQ(folder.Entries(), 2U);
}

// More records than a list of files keeps the data of.
TEST(QvrBuilder, KeepsAllRecordsOfTheSource) {
    Cloud cloud{12, 0, 100};
    cloud.change = [](LasBuilder& builder) {
        for (int i = 0; i < 17; ++i) {
            builder.AddVlr("LASF_Projection", static_cast<std::uint16_t>(100 + i), std::string(65535, 'p'));
        }
    };
    const LasFolder folder;
    const std::string bytes = cloud.Bytes();
    const std::string built = BuiltQvr(folder.TemporaryFolder::Write(L"a.las", bytes), With(2, kMuch));
    ExpectDefinedOrder(folder.Name(L"a.qvr"), CloudParts(bytes).records);
    EXPECT_TRUE(CloudParts(built).head.ends_with(CloudParts(bytes).head.substr(227)));
}

/// Clouds that are hard to divide, each with few enough points for the slow reference.
std::vector<std::pair<const char*, Cloud>> OddClouds() {
    const auto with = [](std::size_t points, std::function<Position(std::size_t)> position) {
        return Cloud{12, 0, points, 0, std::move(position)};
    };
    std::vector<std::pair<const char*, Cloud>> clouds{
        {"none", with(0, nullptr)},
        {"one", with(1, nullptr)},
        {"plane", with(5000, nullptr)},
        {"one place", with(4000,
                           [](std::size_t) {
                               return Position{5, 6, 7};
                           })},
        {"two places", with(4000,
                            [](std::size_t i) {
                                return Position{i % 40 == 0 ? 9.0 : 5.0, 6, 7};
                            })},
        {"pairs", with(4000,
                       [](std::size_t i) {
                           const std::size_t pair = i / 2;
                           return Position{0.01 * double(pair), 6, 7};
                       })},
        {"far apart",
         with(3000,
              [](std::size_t i) {
                  return Position{i % 3 == 0 ? -21474836.48 : 21474836.47, double(i), 0.01 * double(i % 7)};
              })},
        {"in one cell",
         with(3000,
              [](std::size_t i) {
                  return Position{i == 0 ? 21474836.0 : 0.01 * double(i % 30), i == 1 ? -21474836.0 : 0, 0};
              })},
    };
    clouds.emplace_back("alike", Cloud{12, 0, 3000, 0, [](std::size_t) { return Position{5, 6, 7}; }, true});
    Cloud outside{12, 1, 3000};
    outside.change = [](LasBuilder& builder) { builder.Lie(las::at::kMinimum, 50.0); };
    clouds.emplace_back("outside its extent", outside);
    outside.change = [](LasBuilder& builder) { builder.Lie(las::at::kMaximum, 1e300); };
    clouds.emplace_back("extent too large", outside);
    return clouds;
}

TEST(QvrBuilder, IsTheSameForAllThreadsAndBudgets) {
    const LasFolder folder;
    for (const auto& [name, cloud] : OddClouds()) {
        for (const bool isRandom : {true, false}) {
            SCOPED_TRACE(::testing::Message() << name << (isRandom ? ", random" : ", file order"));
            const std::string bytes = cloud.Bytes();
            const std::wstring path = folder.TemporaryFolder::Write(L"a.las", bytes);
            const std::string built = BuiltQvr(path, With(1, kMuch, isRandom));
            ExpectDefinedOrder(folder.Name(L"a.qvr"), CloudParts(bytes).records);
            for (const unsigned threads : {1U, 2U, 5U}) {
                EXPECT_TRUE(BuiltQvr(path, With(threads, kLittle, isRandom)) == built) << threads;
            }
            EXPECT_TRUE(BuiltQvr(path, With(5, kMuch, isRandom)) == built);
            EXPECT_EQ(folder.Entries(), 2U) << "temporary files";
        }
    }
}

// The example of docs/formats/qvr.md.
TEST(QvrBuilder, BuildsTheWorkedExample) {
    const Position positions[] = {{1, 1, 0}, {7, 7, 0}, {6, 7, 0}, {1, 6, 0}, {0, 0, 0}};
    Cloud cloud{12, 0, 5};
    cloud.position = [&](std::size_t i) { return Position{positions[i][0] / 100, positions[i][1] / 100, 0}; };
    const LasFolder folder;
    const std::wstring path = folder.TemporaryFolder::Write(L"a.las", cloud.Bytes());
    const std::vector<std::string> built = CloudParts(BuiltQvr(path, With(2, kMuch, false))).records;
    const std::vector<std::string> source = CloudParts(cloud.Bytes()).records;
    EXPECT_EQ(built, (std::vector{source[0], source[1], source[3], source[4], source[2]}));
    const auto qvr = QvrFile::Open(folder.Name(L"a.qvr"));
    const std::vector<QvrEntry> entries{{{1, 1, 0}, 0, 1, 0, 21},
                                        {{7, 7, 0}, 1, 1, 1, 21},
                                        {{1, 6, 0}, 2, 1, 2, 21},
                                        {{0, 0, 0}, 3, 2, 15, 0}};
    EXPECT_TRUE(std::ranges::equal(qvr->Entries(), entries));
}

TEST(QvrBuilder, SeedAndOrderDecideTheRepresentatives) {
    const LasFolder folder;
    const std::wstring path = folder.TemporaryFolder::Write(L"a.las", Cloud{}.Bytes());
    QvrSettings settings = With(2, kMuch);
    const std::string random = BuiltQvr(path, settings);
    settings.seed = 1;
    EXPECT_NE(CloudParts(BuiltQvr(path, settings)).records.front(), CloudParts(random).records.front());
    settings.randomOrder = false;
    EXPECT_EQ(CloudParts(BuiltQvr(path, settings)).records.front(),
              CloudParts(Cloud{}.Bytes()).records.front());
}

// Cells of a grid of 16 by 16 that hold the fewest and the most of the first points.
std::pair<std::size_t, std::size_t> Spread(const std::vector<std::string>& records, std::size_t count) {
    std::vector<std::size_t> cells(256);
    for (const std::string& record : std::span(records).first(count)) {
        const auto cell = [&](std::size_t at) {
            return static_cast<std::size_t>(testing::At<std::int32_t>(record, at)) / 512;
        };
        ++cells.at(16 * cell(0) + cell(4));
    }
    const auto [least, most] = std::ranges::minmax(cells);
    return {least, most};
}

TEST(QvrBuilder, EveryStartOfTheFileCoversTheExtentEvenly) {
    std::mt19937 random(7);
    Cloud cloud{12, 0, 40000};
    // Lines of flight, the last with ten times the points; the corners set the extent.
    cloud.position = [&random](std::size_t i) {
        const auto unit = [&] { return static_cast<double>(random() % 8192) / 100; };
        const double x = i < 20000 ? 0.9 * 81.92 * double(i) / 20000 : 73.728 + unit() / 10;
        return i < 2 ? Position{81.91 * double(i), 81.91 * double(i), 0}
                     : Position{std::min(x, 81.91), unit(), 0};
    };
    const LasFolder folder;
    const std::wstring path = folder.TemporaryFolder::Write(L"a.las", cloud.Bytes());
    const std::vector<std::string> built = CloudParts(BuiltQvr(path, With(2, kMuch))).records;
    const std::vector<std::string> source = CloudParts(cloud.Bytes()).records;
    for (const std::size_t count : {256U, 1024U, 2048U, 4096U}) {
        const auto [least, most] = Spread(built, count);
        EXPECT_GE(least, count / 256 / 2) << count;
        EXPECT_LE(most, 4 * count / 256) << count;
        EXPECT_EQ(Spread(source, count).first, 0U) << "control: the file's own order";
    }
}

TEST(QvrBuilder, TakesLazFiles) {
    const LasFolder folder;
    for (const std::uint8_t format : {std::uint8_t{1}, std::uint8_t{7}}) {
        const testing::LazSample sample{static_cast<std::uint8_t>(format == 7 ? 4 : 2), format,
                                        static_cast<std::uint16_t>(format == 7 ? 40 : 28), 7000};
        testing::WriteSample(folder.Name(L"a.laz"), sample, true);
        testing::WriteSample(folder.Name(L"b.las"), sample, false);
        const std::vector<std::string> source = CloudParts(testing::ReadFile(folder.Name(L"b.las"))).records;
        for (const std::uint64_t memory : {kMuch, kLittle}) {
            SCOPED_TRACE(::testing::Message() << int{format} << ", " << memory);
            BuiltQvr(folder.Name(L"a.laz"), With(2, memory));
            ExpectDefinedOrder(folder.Name(L"a.qvr"), source);
        }
    }
}

/// The most bytes that files without these extensions have in a folder, at the start of every phase.
class DiskUse final : public Kst::ProgressIf {
  public:
    explicit DiskUse(const LasFolder& folder) : folder_(FromPath(folder.Path())) {}
    void SetRange(std::uint64_t) override {}
    void SetText(const std::wstring&) override {
        std::uint64_t bytes = 0;
        ListFolder(folder_, [&](const FolderEntry& entry) {
            const std::wstring extension = UpperExtensionOf(entry.path);
            bytes += extension == L".LAS" || extension == L".LAZ" ? 0 : FileSizeOf(entry.path).value_or(0);
            return true;
        });
        most = std::max(most, bytes);
    }
    void SetPosition(std::uint64_t) override {}
    bool IsCancelled() override { return false; }

    std::uint64_t most = 0;

  private:
    const std::wstring folder_;
};

TEST(QvrBuilder, TemporarySpaceIsThatOfThePlan) {
    const LasFolder folder;
    const testing::LazSample sample{2, 0, 20, 120000};
    testing::WriteSample(folder.Name(L"a.las"), sample, false);
    testing::WriteSample(folder.Name(L"a.laz"), sample, true);
    Kst::NullProgress progress;
    // With many threads and little memory, points are distributed more than once.
    const std::pair<const wchar_t*, QvrSettings> cases[] = {
        {L"a.las", With(2, 3U << 20U)}, {L"a.laz", With(2, 3U << 20U)}, {L"a.las", With(16, 3U << 20U)}};
    for (const auto& [name, settings] : cases) {
        const QvrPlan plan = PlanQvr(folder.Name(name), settings);
        DiskUse use(folder);
        EXPECT_TRUE(BuildQvr(plan, settings, use));
        EXPECT_LE(use.most, plan.temporaryBytes) << name << ", " << settings.threads;
        EXPECT_GE(use.most, 120000U * 24) << name << ": points and order were not in memory";
        EXPECT_LE(FileSizeOf(plan.target), plan.targetBytes);
        EXPECT_EQ(VerifyQvrPoints(*QvrFile::Open(plan.target), progress),
                  SumOfPoints(folder.Name(L"a.las"), progress));
        RemoveFile(plan.target);
    }
}

TEST(QvrBuilder, PlannedMemoryIsThatOfTheSettings) {
    constexpr std::uint64_t kMiB = std::uint64_t{1} << 20U;
    constexpr std::uint64_t kBytesOfABucket = 20000;  // counts, runs and representatives, as measured
    const struct {
        std::uint64_t points;
        std::size_t recordLength;
        unsigned threads;
        std::uint64_t memory;
    } cases[] = {{10'000'000, 34, 2, 512 * kMiB},   {50'000, 65535, 64, 512 * kMiB},
                 {1000, 65535, 2, 16 * kMiB},       {12'000'000, 34, 64, 16 * kMiB},
                 {300'000'000, 34, 64, 512 * kMiB}, {1'000'000'000, 34, 16, 512 * kMiB}};
    for (const auto& c : cases) {
        SCOPED_TRACE(::testing::Message() << c.points << " points, " << c.threads << " threads");
        QvrSettings settings;
        settings.threads = c.threads;
        settings.memory = c.memory;
        const QvrSizes sizes = QvrSizes::For(c.points, c.recordLength, settings);
        EXPECT_LE(sizes.memoryBytes, c.memory + c.memory / 4);
        EXPECT_LE(sizes.threads * sizes.BucketsFor(c.points) * sizes.BlockBytes(), sizes.memoryBytes);
        EXPECT_LE(c.points / sizes.wantedPoints * kBytesOfABucket, sizes.memoryBytes / 2);
    }
}

/// Stops at a call; counts them.
class StopAt final : public Kst::ProgressIf {
  public:
    StopAt(StringId text, int call) : text_(FormatText(Text(text), {L"a.las"})), left_(call) {}
    void SetRange(std::uint64_t) override {}
    void SetText(const std::wstring& text) override { isPhase_ = text == text_; }
    void SetPosition(std::uint64_t) override {}
    bool IsCancelled() override { return isPhase_ && left_-- <= 0; }

  private:
    const std::wstring text_;
    bool isPhase_ = false;
    int left_;
};

TEST(QvrBuilder, CancellingLeavesWhatWasThere) {
    const LasFolder folder;
    const std::wstring path = folder.TemporaryFolder::Write(L"a.las", Cloud{}.Bytes());
    for (const StringId phase : {text::kQvrReading, text::kQvrOrdering, text::kQvrWriting}) {
        for (const int call : {0, 1}) {
            for (const std::uint64_t memory : {kMuch, kLittle}) {
                folder.TemporaryFolder::Write(L"a.qvr", "old");
                StopAt progress(phase, call);
                const QvrSettings settings = With(2, memory);
                EXPECT_FALSE(BuildQvr(PlanQvr(path, settings), settings, progress));
                EXPECT_EQ(testing::ReadFile(folder.Name(L"a.qvr")), "old");
                EXPECT_EQ(folder.Entries(), 2U);
            }
        }
    }
}

std::wstring FailureToPlan(const std::wstring& path, const QvrSettings& settings = {}) {
    try {
        PlanQvr(path, settings);
    } catch (const LDataError& error) {
        return error.Text();
    }
    return {};
}

TEST(QvrBuilder, RefusesWhatItCannotRead) {
    const LasFolder folder;
    const std::wstring name = folder.Name(L"a.las");
    const std::string whole = Cloud{}.Bytes();
    const auto failure = [&](const std::string& bytes) {
        return FailureToPlan(folder.TemporaryFolder::Write(L"a.las", bytes));
    };
    EXPECT_EQ(failure(whole.substr(0, whole.size() - 1)),
              FormatText(Text(text::kQvrSourceTruncated), {name, GroupedNumber(3000), GroupedNumber(2999)}));
    EXPECT_EQ(failure("no LAS file"), FormatText(Text(text::kLazNotLas), {name}));
    const std::wstring damaged = FormatText(Text(text::kLazHeaderDamaged), {name});
    for (const auto& [offset, value] : {std::pair<std::size_t, char>{104, 11}, {105, 19}, {94, 1}, {99, 1}}) {
        std::string bytes = whole;
        bytes[offset] = value;
        EXPECT_EQ(failure(bytes), damaged) << offset;
    }
    Cloud arrays{12, 1, 10};
    arrays.change = [](LasBuilder& builder) { builder.AddExtraBytes("normal", 25, 12); };
    EXPECT_EQ(failure(arrays.Bytes()),
              name + L": GetExtraByteOffsets: '25' is not a valid extra bytes data_type value.");
    Cloud immense{14, 6};
    immense.change = [](LasBuilder& builder) { builder.Lie(las::at::kPointCount, std::uint64_t{1} << 60U); };
    EXPECT_EQ(failure(immense.Bytes()), damaged) << "sizes would overflow";
    EXPECT_FALSE(FailureToPlan(folder.Name(L"missing.las")).empty());
    QvrSettings settings;
    settings.target = folder.TemporaryFolder::Write(L"a.las", whole);
    EXPECT_EQ(FailureToPlan(settings.target, settings), FormatText(Text(text::kQvrIsCompanion), {name}));
    settings.target = folder.Name(L"missing/a.qvr");
    EXPECT_TRUE(FailureToPlan(name, settings).find(settings.target) != std::wstring::npos);
    EXPECT_EQ(folder.Entries(), 1U);
    settings.target = folder.Name(L"a.qvr");
    CreateFolders(settings.target);
    EXPECT_TRUE(FailureToPlan(name, settings).find(settings.target) != std::wstring::npos);
    EXPECT_EQ(folder.Entries(), 2U);
}

/// Counts ranges and looks whether the position goes back.
class Forward final : public testing::RecordingProgress {
  public:
    void SetRange(std::uint64_t range) override {
        ++ranges;
        RecordingProgress::SetRange(range);
    }
    void SetPosition(std::uint64_t done) override {
        isForward = isForward && done >= position;
        RecordingProgress::SetPosition(done);
    }

    std::size_t ranges = 0;
    bool isForward = true;
};

/// Changes something when a phase begins.
class ChangeAt final : public Kst::ProgressIf {
  public:
    ChangeAt(StringId text, std::function<void()> change)
        : text_(FormatText(Text(text), {L"a.las"})), change_(std::move(change)) {}
    void SetRange(std::uint64_t) override {}
    void SetText(const std::wstring& text) override {
        if (text == text_) {
            change_();
        }
    }
    void SetPosition(std::uint64_t) override {}
    bool IsCancelled() override { return false; }

  private:
    const std::wstring text_;
    const std::function<void()> change_;
};

TEST(QvrBuilder, NoticesThatTheSourceChanges) {
    const LasFolder folder;
    for (const StringId phase : {text::kQvrReading, text::kQvrOrdering, text::kQvrWriting}) {
        const std::wstring path = folder.TemporaryFolder::Write(L"a.las", Cloud{}.Bytes());
        ChangeAt progress(phase, [&] { std::filesystem::resize_file(ToPath(path), 2000); });
        try {
            BuildQvr(PlanQvr(path), {}, progress);
            ADD_FAILURE() << "not noticed";
        } catch (const LDataError& error) {
            EXPECT_EQ(error.Text(), FormatText(Text(text::kQvrSourceChanged), {path}));
        }
        EXPECT_EQ(folder.Entries(), 1U);
    }
}

// Another process can have built it, or the user copied it there.
TEST(QvrBuilder, KeepsACompanionThatAppearsMeanwhile) {
    const LasFolder folder;
    const std::wstring path = folder.TemporaryFolder::Write(L"a.las", Cloud{}.Bytes());
    const std::wstring exists = FormatText(Text(text::kCompanionExists), {folder.Name(L"a.qvr")});
    ChangeAt progress(text::kQvrWriting, [&] { folder.TemporaryFolder::Write(L"a.qvr", "theirs"); });
    const QvrPlan plan = PlanQvr(path);
    try {
        BuildQvr(plan, {}, progress);
        ADD_FAILURE() << "replaced";
    } catch (const LDataError& error) {
        EXPECT_EQ(error.Text(), exists);
    }
    EXPECT_TRUE(testing::ReadFile(folder.Name(L"a.qvr")) == "theirs");
    EXPECT_EQ(folder.Entries(), 2U);
    EXPECT_EQ(FailureToPlan(path), exists);
}

// A bar that runs to its end several times tells nothing.
TEST(QvrBuilder, ReportsOneProgressForAllPhases) {
    const LasFolder folder;
    Cloud twice;  // read again, because points lie outside the header's extent
    twice.change = [](LasBuilder& builder) { builder.Lie(179, 0.0); };
    for (const Cloud& cloud : {Cloud{}, twice, Cloud{12, 0, 0}}) {
        Forward progress;
        const std::wstring path = folder.TemporaryFolder::Write(L"a.las", cloud.Bytes());
        EXPECT_TRUE(BuildQvr(PlanQvr(path, With(2, kLittle)), With(2, kLittle), progress));
        EXPECT_EQ(progress.ranges, 1U);
        EXPECT_TRUE(progress.isForward);
        EXPECT_EQ(progress.position, progress.total);
    }
}

TEST(QvrBuilder, AGreaterFactorGivesFewerEntries) {
    const LasFolder folder;
    const std::wstring path = folder.TemporaryFolder::Write(L"a.las", Cloud{12, 0, 60000}.Bytes());
    std::size_t before = 60000;
    for (const std::uint16_t factor : {std::uint16_t{0}, std::uint16_t{10}, std::uint16_t{65535}}) {
        QvrSettings settings = With(2, kMuch);
        settings.factor = factor;
        BuiltQvr(path, settings);
        const std::size_t entries = QvrFile::Open(folder.Name(L"a.qvr"))->Entries().size();
        EXPECT_LT(entries, before) << factor;
        before = entries;
    }
}

}  // namespace
}  // namespace orvex
