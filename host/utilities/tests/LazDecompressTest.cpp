#include <gtest/gtest.h>

#include <chrono>
#include <filesystem>
#include <functional>
#include <stdexcept>

#include "host/utilities/testing/LazSamples.h"
#include "orvexcommon/OrvexUtilities.h"
#include "support/Text.h"
#include "support/testing/Bytes.h"
#include "support/testing/Scripted.h"
#include "support/testing/TemporaryFolder.h"

namespace orvex {
namespace {

using testing::At;
using testing::Bytes;
using testing::LazSample;
using testing::ReadFile;
using testing::RecordingProgress;
using testing::TemporaryFolder;
using testing::WriteSample;

struct Attempt {
    bool isDone = false;
    std::wstring reason = L"of the call before";
    RecordingProgress progress;
};

Attempt Decompress(const std::wstring& laz, const std::wstring& las, int stopAfter = -1) {
    Attempt attempt;
    attempt.progress.stopAfter = stopAfter;
    attempt.isDone = OrvexUtilities::LAZDecompress(laz, las, attempt.progress, attempt.reason);
    return attempt;
}

/// Decompresses a file beside itself and returns the bytes of the LAS file; empty if that failed.
std::string Decompressed(const std::wstring& laz) {
    const std::wstring las = OrvexUtilities::GetLAZBuddyPath(laz);
    const Attempt attempt = Decompress(laz, las);
    EXPECT_TRUE(attempt.isDone) << ToUtf8(attempt.reason);
    return ReadFile(las);
}

struct TrailingRecord {
    std::string userId;
    std::uint16_t recordId = 0;
    std::string data;
};

/// Appends extended records to a file and enters them in its header (LAS 1.4), or the first of them as the
/// waveform record (LAS 1.3).
std::string WithExtendedRecords(std::string bytes, const std::vector<TrailingRecord>& records) {
    const std::string start = Bytes(std::uint64_t{bytes.size()});
    for (const TrailingRecord& record : records) {
        std::string header(60, '\0');
        header.replace(2, record.userId.size(), record.userId);
        header.replace(18, 2, Bytes(record.recordId));
        header.replace(20, 8, Bytes(std::uint64_t{record.data.size()}));
        bytes += header + record.data;
    }
    if (bytes[25] == 3) {
        return bytes.replace(227, 8, start);
    }
    return bytes.replace(235, 12, start + Bytes(static_cast<std::uint32_t>(records.size())));
}

/// Expects a decompression to fail with a reason that names the file, leaving nothing new in the folder.
void ExpectFailure(const TemporaryFolder& folder, const std::wstring& laz, const std::wstring& las) {
    const std::size_t before = folder.Entries();
    const Attempt attempt = Decompress(laz, las);
    EXPECT_FALSE(attempt.isDone);
    EXPECT_TRUE(attempt.reason.find(laz) != std::wstring::npos ||
                attempt.reason.find(las) != std::wstring::npos)
        << ToUtf8(attempt.reason);
    EXPECT_EQ(folder.Entries(), before);
}

class LazDecompressTest : public ::testing::Test {
  protected:
    const TemporaryFolder folder_;
    const std::wstring laz_ = folder_.Name(L"a.laz");
    const std::wstring las_ = folder_.Name(L"a.las");
};

TEST_F(LazDecompressTest, GivesTheSameBytesAsTheFileThatWasNeverCompressed) {
    const LazSample samples[] = {
        {0, 0, 20, 500},  {2, 1, 28, 0},
        {2, 1, 28, 1},    {2, 1, 31, 60000},  // three extra bytes, more than one chunk
        {2, 3, 34, 1000}, {4, 1, 28, 1000},
        {4, 6, 30, 1000}, {4, 7, 40, 60000},  // four extra bytes
        {4, 8, 38, 1000},
    };
    for (const LazSample& sample : samples) {
        SCOPED_TRACE(::testing::Message() << "1." << int{sample.versionMinor} << " format "
                                          << int{sample.pointFormat} << ", " << sample.points << " points");
        const TemporaryFolder folder;
        const std::wstring laz = folder.Name(L"Gelände süd.LAZ");
        const std::wstring las = OrvexUtilities::GetLAZBuddyPath(laz);
        WriteSample(laz, sample, true);
        const std::string compressed = ReadFile(laz);
        const auto old = std::filesystem::file_time_type::clock::now() - std::chrono::hours(48);
        std::filesystem::last_write_time(ToPath(laz), old);
        EXPECT_TRUE(OrvexUtilities::IsLAZNewer(laz));

        const Attempt attempt = Decompress(laz, las);
        ASSERT_TRUE(attempt.isDone) << ToUtf8(attempt.reason);
        EXPECT_EQ(attempt.reason, L"");
        EXPECT_EQ(attempt.progress.total, sample.points);
        EXPECT_EQ(attempt.progress.position, sample.points);
        EXPECT_FALSE(OrvexUtilities::IsLAZNewer(laz));
        EXPECT_EQ(ReadFile(laz), compressed);
        EXPECT_EQ(folder.Entries(), 2U);

        const std::wstring twin = folder.Name(L"twin.las");
        WriteSample(twin, sample, false);
        EXPECT_TRUE(ReadFile(las) == ReadFile(twin));
        EXPECT_EQ(At<std::uint8_t>(ReadFile(las), 104), sample.pointFormat);
    }
}

TEST_F(LazDecompressTest, UnpacksPointsThatWereFittedIntoOlderFormats) {
    const LazSample sample{4, 7, 36, 1000, true};
    WriteSample(laz_, sample, true);
    ASSERT_LT(At<std::uint8_t>(ReadFile(laz_), 104) & 63, 6) << "packed";
    const std::string las = Decompressed(laz_);
    WriteSample(folder_.Name(L"twin.las"), {4, 7, 36, 1000}, false);
    const std::string twin = ReadFile(folder_.Name(L"twin.las"));
    EXPECT_EQ(At<std::uint8_t>(las, 104), 7);
    const std::size_t points = std::size_t{36} * 1000;
    ASSERT_GE(las.size(), points);
    EXPECT_TRUE(las.substr(las.size() - points) == twin.substr(twin.size() - points));
}

TEST_F(LazDecompressTest, MovesExtendedRecordsBehindThePoints) {
    WriteSample(laz_, {4, 6, 30, 100}, true);
    const std::string las = Decompressed(folder_.Write(
        L"b.laz", WithExtendedRecords(ReadFile(laz_), {{"LASF_Projection", 2112, "WKT text"},
                                                       {"copc", 1000, "where the chunks were"},
                                                       {"other", 5, std::string(3 << 20, 'x')}})));
    ASSERT_NE(las, "");
    const std::size_t start = At<std::uint32_t>(las, 96) + std::size_t{30} * 100;
    EXPECT_EQ(At<std::uint64_t>(las, 235), start);
    EXPECT_EQ(At<std::uint32_t>(las, 243), 2U);
    EXPECT_STREQ(las.c_str() + start + 2, "LASF_Projection");
    EXPECT_EQ(las.substr(start + 60, 8), "WKT text");
    EXPECT_STREQ(las.c_str() + start + 68 + 2, "other");
    EXPECT_EQ(las.size(), start + 68 + 60 + (3 << 20));
}

TEST_F(LazDecompressTest, AnnouncesNoExtendedRecordsWhereNoneAreUsable) {
    const std::uint64_t farAway = ~std::uint64_t{0} - 10;
    const struct {
        std::uint64_t start;
        std::uint32_t count;
    } cases[] = {{0, 0}, {farAway, 1}, {1, 0xFFFFFFFF}, {375, 3}};
    WriteSample(laz_, {4, 6, 30, 10}, true);
    for (const auto& row : cases) {
        std::string bytes = ReadFile(laz_);
        bytes.replace(235, 12, Bytes(row.start, row.count));
        const std::string las = Decompressed(folder_.Write(L"b.laz", bytes));
        ASSERT_NE(las, "");
        EXPECT_EQ(At<std::uint64_t>(las, 235), 0U) << row.start;
        EXPECT_EQ(At<std::uint32_t>(las, 243), 0U) << row.start;
        EXPECT_EQ(las.size(), At<std::uint32_t>(las, 96) + 300U);
    }
}

TEST_F(LazDecompressTest, MovesTheWaveformRecordOfOlderFiles) {
    WriteSample(laz_, {3, 1, 28, 100}, true);
    const std::string las = Decompressed(
        folder_.Write(L"b.laz", WithExtendedRecords(ReadFile(laz_), {{"LASF_Spec", 65535, "packets"}})));
    ASSERT_NE(las, "");
    const std::size_t start = At<std::uint32_t>(las, 96) + std::size_t{28} * 100;
    EXPECT_EQ(At<std::uint64_t>(las, 227), start);
    EXPECT_EQ(las.substr(start + 60), "packets");
}

TEST_F(LazDecompressTest, StopLeavesNothingAndKeepsAnOlderLasFile) {
    // Chunks have 50000 points: the second file is read by one thread, so that it is stopped in the middle.
    const struct {
        std::uint32_t points;
        int stopAfter;
    } cases[] = {{200000, 0}, {200000, 1}, {50000, 2}};
    folder_.Write(L"a.las", "older");
    for (const auto& row : cases) {
        WriteSample(laz_, {2, 1, 28, row.points}, true);
        const Attempt attempt = Decompress(laz_, las_, row.stopAfter);
        EXPECT_FALSE(attempt.isDone);
        EXPECT_EQ(attempt.reason, L"");
        EXPECT_EQ(attempt.progress.told, row.stopAfter);
        EXPECT_EQ(folder_.Entries(), 2U);
        EXPECT_EQ(ReadFile(las_), "older");
    }
}

using Damage = std::function<void(std::string& bytes)>;

Damage Cut(double share) {
    return [share](std::string& bytes) {
        bytes.resize(static_cast<std::size_t>(static_cast<double>(bytes.size()) * share));
    };
}

Damage Put(std::size_t offset, const std::string& field) {
    return [=](std::string& bytes) { bytes.replace(offset, field.size(), field); };
}

/// Overwrites a field of the codec's own record; `offset` counts from its payload.
Damage PutCodec(std::size_t offset, const std::string& field) {
    return [=](std::string& bytes) { Put(bytes.find("laszip encoded") - 2 + 54 + offset, field)(bytes); };
}

TEST_F(LazDecompressTest, BrokenFilesGiveAReason) {
    const struct {
        const char* defect;
        Damage damage;
    } cases[] = {
        {"empty", Cut(0)},
        {"half a header", [](auto& bytes) { bytes.resize(180); }},
        {"points cut off", Cut(0.5)},
        {"nothing behind the header", [](auto& bytes) { bytes.resize(At<std::uint32_t>(bytes, 96)); }},
        {"unknown compressor", PutCodec(0, Bytes(std::uint16_t{9}))},
        {"too many items", PutCodec(32, Bytes(std::uint16_t{0xFFFF}))},
        {"an unknown item", PutCodec(34, Bytes(std::uint16_t{99}))},
        {"an item of the wrong size", PutCodec(36, Bytes(std::uint16_t{21}))},
        {"an unknown version of an item", PutCodec(38, Bytes(std::uint16_t{0}))},
        {"half a table of chunks",
         [](auto& bytes) { bytes.resize(At<std::uint64_t>(bytes, At<std::uint32_t>(bytes, 96)) + 5); }},
        {"varying chunks without a table",
         [](auto& bytes) {
             PutCodec(12, Bytes(0xFFFFFFFFU))(bytes);
             Cut(0.9)(bytes);
         }},
        {"no signature", Put(0, "XXXX")},
        {"header size 0", Put(94, Bytes(std::uint16_t{0}))},
        {"points start beyond the end", Put(96, Bytes(std::uint32_t{0xFFFFFFF0}))},
        {"four billion records", Put(100, Bytes(std::uint32_t{0xFFFFFFFF}))},
        {"unknown point format", Put(104, Bytes(std::uint8_t{128 + 63}))},
        {"record length 0", Put(105, Bytes(std::uint16_t{0}))},
        {"more points than there are", Put(107, Bytes(std::uint32_t{100001}))},
        {"more points than fit on the drive", Put(247, Bytes(std::uint64_t{1} << 60))},
        {"points without end", Put(247, Bytes(~std::uint64_t{0}))},
    };
    WriteSample(laz_, {4, 1, 28, 100000}, true);
    const std::string whole = ReadFile(laz_);
    for (const auto& row : cases) {
        SCOPED_TRACE(row.defect);
        std::string bytes = whole;
        row.damage(bytes);
        ExpectFailure(folder_, folder_.Write(L"a.laz", bytes), las_);
    }
    ExpectFailure(folder_, folder_.Name(L"missing.laz"), folder_.Name(L"missing.las"));
}

TEST_F(LazDecompressTest, PlacesThatCannotBeWrittenGiveAReason) {
    WriteSample(laz_, {2, 1, 28, 100}, true);
    std::filesystem::create_directory(ToPath(folder_.Name(L"taken.las")));
    ExpectFailure(folder_, laz_, folder_.Name(L"taken.las"));
    ExpectFailure(folder_, laz_, folder_.Name(L"missing/a.las"));
    ExpectFailure(folder_, laz_, laz_);
}

struct ThrowingProgress final : RecordingProgress {
    void SetPosition(std::uint64_t) override { throw std::runtime_error("the window is gone"); }
};

TEST_F(LazDecompressTest, AnExceptionFromTheProgressLeavesNothing) {
    WriteSample(laz_, {2, 1, 28, 100}, true);
    ThrowingProgress progress;
    std::wstring reason;
    EXPECT_FALSE(OrvexUtilities::LAZDecompress(laz_, las_, progress, reason));
    EXPECT_EQ(reason, L"the window is gone");
    EXPECT_EQ(folder_.Entries(), 1U);
}

TEST(LazFiles, BuddyPathsKeepFolderNameAndLetterCase) {
    const struct {
        const wchar_t *path, *buddy;
        bool isLaz;
    } cases[] = {
        {L"/data/a.laz", L"/data/a.las", true},
        {L"/data/a.Laz", L"/data/a.Las", true},
        {L"/data/a.las", L"/data/a.laz", false},
        {L"/data/a.LAS", L"/data/a.LAZ", false},
        {L"/data/x.copc.laz", L"/data/x.copc.las", true},
        {L"/da.laz/a", L"", false},
        {L"/data/a.laz.txt", L"", false},
        {L"", L"", false},
    };
    for (const auto& row : cases) {
        EXPECT_EQ(OrvexUtilities::GetLAZBuddyPath(row.path), row.buddy) << ToUtf8(row.path);
        EXPECT_EQ(OrvexUtilities::IsLAZFile(row.path), row.isLaz) << ToUtf8(row.path);
    }
}

TEST(LazFiles, AgesAreComparedToTheSecond) {
    const TemporaryFolder folder;
    const std::wstring laz = folder.Write(L"a.laz", "x");
    EXPECT_TRUE(OrvexUtilities::IsLAZNewer(laz)) << "no buddy yet";
    EXPECT_FALSE(OrvexUtilities::LAZEnabledLASFileExists(laz));
    const std::wstring las = folder.Write(L"a.las", "x");
    EXPECT_TRUE(OrvexUtilities::LAZEnabledLASFileExists(laz));

    using namespace std::chrono_literals;
    const auto now = std::chrono::floor<std::chrono::seconds>(std::filesystem::file_time_type::clock::now());
    const struct {
        std::chrono::milliseconds lazAge, lasAge;
        bool newer;
    } cases[] = {
        {0s, 0s, false}, {900ms, 100ms, false}, {100ms, 900ms, false}, {2s, 0s, true}, {0s, 2s, false}};
    for (const auto& row : cases) {
        std::filesystem::last_write_time(ToPath(laz), now + row.lazAge);
        std::filesystem::last_write_time(ToPath(las), now + row.lasAge);
        EXPECT_EQ(OrvexUtilities::IsLAZNewer(laz), row.newer)
            << row.lazAge.count() << " " << row.lasAge.count();
    }
    EXPECT_FALSE(OrvexUtilities::IsLAZNewer(las)) << "not a LAZ file";
    EXPECT_FALSE(OrvexUtilities::IsLAZNewer(folder.Name(L"missing.laz")));
}

TEST(LazFiles, EnabledNeedsTheFileAndAPlaceForItsBuddy) {
    const TemporaryFolder folder;
    EXPECT_TRUE(OrvexUtilities::IsLAZEnabled(folder.Write(L"a.laz", "x")));
    EXPECT_FALSE(OrvexUtilities::IsLAZEnabled(folder.Write(L"a.las", "x")));
    EXPECT_FALSE(OrvexUtilities::IsLAZEnabled(folder.Name(L"missing.laz")));
    std::filesystem::create_directory(ToPath(folder.Name(L"folder.laz")));
    EXPECT_FALSE(OrvexUtilities::IsLAZEnabled(folder.Name(L"folder.laz")));
}

}  // namespace
}  // namespace orvex
