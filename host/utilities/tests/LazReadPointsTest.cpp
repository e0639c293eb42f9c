#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <cstring>
#include <functional>
#include <map>
#include <mutex>
#include <set>
#include <span>

#include "host/utilities/testing/LazSamples.h"
#include "host/utilities/testing/LazTableEncoder.h"
#include "orvexcommon/OrvexUtilities.h"
#include "support/LDataError.h"
#include "support/Text.h"
#include "support/testing/Bytes.h"
#include "support/testing/TemporaryFolder.h"

namespace orvex {
namespace {

using testing::At;
using testing::Bytes;
using testing::EncodeLazTable;
using testing::LazSample;
using testing::ReadFile;
using testing::TemporaryFolder;
using testing::WriteSample;

constexpr unsigned kThreads[] = {1, 2, 5};

struct Reading {
    bool isDone = false;
    std::wstring reason = L"of the call before";
    std::string records;             ///< each at its place
    std::uint64_t points = 0;        ///< taken, each as often as it came
    std::set<std::uint64_t> starts;  ///< of the ranges
};

Reading ReadPoints(const std::wstring& laz, std::size_t recordLength, unsigned threads) {
    Reading reading;
    std::mutex lock;
    const auto take = [&](std::uint64_t first, std::span<const std::byte> records) {
        const std::lock_guard guard(lock);
        const std::size_t start = static_cast<std::size_t>(first) * recordLength;
        reading.records.resize(std::max(reading.records.size(), start + records.size()));
        std::memcpy(reading.records.data() + start, records.data(), records.size());
        reading.points += records.size() / recordLength;
        reading.starts.insert(first);
        return true;
    };
    reading.isDone = OrvexUtilities::LAZReadPoints(laz, threads, take, reading.reason);
    return reading;
}

/// The records of a LAS file.
std::string Records(const std::wstring& las) {
    const std::string bytes = ReadFile(las);
    return bytes.substr(At<std::uint32_t>(bytes, 96));
}

std::uint64_t TablePlace(const std::string& laz) {
    return At<std::uint64_t>(laz, At<std::uint32_t>(laz, 96));
}

/// Overwrites a field of the codec's own record; `offset` counts from its payload.
void PutCodec(std::string& laz, std::size_t offset, const std::string& field) {
    laz.replace(laz.find("laszip encoded") - 2 + 54 + offset, field.size(), field);
}

class LazReadPointsTest : public ::testing::Test {
  protected:
    /// Expects the same records from any number of threads.
    void ExpectRecords(const std::wstring& laz, const std::string& expected, std::size_t recordLength) {
        for (const unsigned threads : kThreads) {
            const Reading reading = ReadPoints(laz, recordLength, threads);
            EXPECT_TRUE(reading.isDone) << ToUtf8(reading.reason);
            EXPECT_EQ(reading.reason, L"");
            EXPECT_EQ(reading.points * recordLength, expected.size()) << threads;
            EXPECT_TRUE(reading.records == expected) << threads;
        }
    }
    /// Expects the same reason from any number of threads.
    void ExpectFailure(const std::wstring& laz) {
        const std::wstring reason = ReadPoints(laz, 1, 1).reason;
        EXPECT_NE(reason.find(laz), std::wstring::npos) << ToUtf8(reason);
        for (const unsigned threads : kThreads) {
            const Reading reading = ReadPoints(laz, 1, threads);
            EXPECT_FALSE(reading.isDone);
            EXPECT_EQ(reading.reason, reason) << threads;
        }
    }

    const TemporaryFolder folder_;
    const std::wstring laz_ = folder_.Name(L"a.laz");
    const std::wstring las_ = folder_.Name(L"a.las");
};

TEST_F(LazReadPointsTest, GivesTheRecordsOfTheFileThatWasNeverCompressed) {
    const LazSample samples[] = {
        {0, 0, 20, 0},
        {0, 0, 20, 1},
        {1, 1, 28, 50000},
        {1, 1, 28, 50001},
        {2, 2, 26, 90000, false, 20000},
        {2, 3, 37, 60000, false, 1000},  // three extra bytes; chunks that are read several at a time
        {3, 4, 57, 45000, false, 22500},
        {3, 5, 63, 45000, false, 22500},
        {4, 6, 30, 60001, false, 20000},
        {4, 7, 40, 50000, false, 25000},  // four extra bytes
        {4, 8, 38, 45000, false, 22500},
        {4, 9, 59, 45000, false, 22500},
        {4, 10, 67, 45000, false, 22500},
        {4, 7, 36, 45000, true, 22500},
        {4, 6, 30000, 100, false, 40},  // records of which few make a block
    };
    for (LazSample sample : samples) {
        SCOPED_TRACE(::testing::Message() << "format " << int{sample.pointFormat} << ", " << sample.points
                                          << " points in chunks of " << sample.chunkSize);
        WriteSample(laz_, sample, true);
        sample.compatibilityMode = false;
        WriteSample(las_, sample, false);
        ExpectRecords(laz_, Records(las_), sample.recordLength);
    }
}

/// A chunk of so many points, and its records in a LAS file.
struct Chunk {
    std::string head;  ///< of the LAZ file that it comes from
    std::string bytes;
    std::string records;
};

Chunk MakeChunk(const TemporaryFolder& folder, LazSample sample, std::uint32_t points) {
    sample.points = sample.chunkSize = points;
    WriteSample(folder.Name(L"part.laz"), sample, true);
    WriteSample(folder.Name(L"part.las"), sample, false);
    const std::string laz = ReadFile(folder.Name(L"part.laz"));
    const std::uint32_t start = At<std::uint32_t>(laz, 96);
    return {laz.substr(0, start), laz.substr(start + 8, TablePlace(laz) - start - 8),
            Records(folder.Name(L"part.las"))};
}

/// A LAZ file whose chunks have the given numbers of points, and `behindFirst` behind the first chunk, as if
/// it belonged to it. `records` gets the records of the points.
std::string WithVaryingChunks(const TemporaryFolder& folder, const LazSample& sample,
                              const std::vector<std::uint32_t>& counts, std::string& records,
                              const std::string& behindFirst = {}) {
    std::map<std::uint32_t, Chunk> made;
    std::string chunks;
    std::vector<std::pair<std::uint32_t, std::uint32_t>> table;
    std::uint32_t points = 0;
    for (const std::uint32_t count : counts) {
        if (!made.contains(count)) {
            made.emplace(count, MakeChunk(folder, sample, count));
        }
        const std::string bytes = made[count].bytes + (table.empty() ? behindFirst : "");
        chunks += bytes;
        table.emplace_back(count, static_cast<std::uint32_t>(bytes.size()));
        records += made[count].records;
        points += count;
    }
    std::string laz = made[counts.front()].head;
    PutCodec(laz, 12, Bytes(0xFFFFFFFFU));
    laz.replace(sample.pointFormat >= 6 ? 247 : 107, 4, Bytes(points));
    return laz + Bytes(laz.size() + 8 + chunks.size()) + chunks +
           Bytes(std::uint32_t{0}, static_cast<std::uint32_t>(table.size())) + EncodeLazTable(table);
}

/// 1500 chunks of 40 to 46 points: so many that the models of the table are all updated more than once.
std::vector<std::uint32_t> ManyChunks() {
    std::vector<std::uint32_t> counts;
    for (std::uint32_t i = 0; i < 1500; ++i) {
        counts.push_back(40 + i * i % 7);
    }
    return counts;
}

TEST_F(LazReadPointsTest, ReadsChunksOfVaryingSize) {
    const struct {
        LazSample sample;
        std::vector<std::uint32_t> counts;
        std::vector<std::uint64_t> pieces;  ///< first points of what is read on its own
    } cases[] = {
        {{2, 1, 28}, {1}, {0}},
        {{4, 6, 30}, {30000, 1, 20000, 40001, 2, 3, 25000}, {0, 30000, 50001, 90002}},
        {{2, 3, 34}, {21000, 21000, 20999}, {0, 21000, 42000}},
        {{4, 7, 36}, ManyChunks(), {0, 20032, 40065, 60101}},
    };
    for (const auto& row : cases) {
        SCOPED_TRACE(::testing::Message() << row.counts.size() << " chunks");
        std::string records;
        const std::wstring laz =
            folder_.Write(L"a.laz", WithVaryingChunks(folder_, row.sample, row.counts, records));
        ExpectRecords(laz, records, row.sample.recordLength);
        const std::set<std::uint64_t> starts = ReadPoints(laz, row.sample.recordLength, 1).starts;
        for (const std::uint64_t piece : row.pieces) {
            EXPECT_TRUE(starts.contains(piece)) << piece;
        }
    }
}

TEST_F(LazReadPointsTest, ReadsFilesWithoutATableFromTheStart) {
    WriteSample(las_, {2, 1, 28, 60000}, false);
    WriteSample(laz_, {2, 1, 28, 60000, false, 25000}, true);
    const std::string whole = ReadFile(laz_);
    const std::uint32_t start = At<std::uint32_t>(whole, 96);
    std::string interrupted = whole;
    interrupted.replace(start, 8, Bytes(std::uint64_t{start}));
    const std::string withPlaceAtEnd =
        std::string(whole).replace(start, 8, std::string(8, '\xFF')) + Bytes(TablePlace(whole));

    WriteSample(laz_, {2, 1, 28, 60000, false, 60000}, true);
    std::string oneStream = ReadFile(laz_);
    oneStream.resize(TablePlace(oneStream));
    oneStream.erase(start, 8);
    PutCodec(oneStream, 0, Bytes(std::uint16_t{1}));

    for (const std::string& bytes : {interrupted, withPlaceAtEnd, oneStream}) {
        ExpectRecords(folder_.Write(L"b.laz", bytes), Records(las_), 28);
    }
    ExpectRecords(las_, Records(las_), 28);
}

TEST_F(LazReadPointsTest, DamageGivesTheSameReasonWithAnyNumberOfThreads) {
    WriteSample(laz_, {4, 6, 30, 200000, false, 20000}, true);
    const std::string whole = ReadFile(laz_);
    const std::size_t start = At<std::uint32_t>(whole, 96) + std::size_t{8};
    const std::uint64_t table = TablePlace(whole);
    const struct {
        const char* defect;
        std::function<void(std::string&)> damage;
    } cases[] = {
        // Behind the first point are the number of points and the bytes of each layer.
        {"a chunk ends before the next one", [&](auto& bytes) { bytes[start + 30 + 4] ^= 1; }},
        {"chunks are missing", [&](auto& bytes) { bytes.erase(table - 40000, 40000); }},
        {"more points than there are", [](auto& bytes) { bytes.replace(247, 4, Bytes(200001)); }},
        {"the table lists two chunks more", [&](auto& bytes) { bytes[table + 4] = 12; }},
        {"the table holds other sizes", [&](auto& bytes) { bytes[table + 9] ^= 64; }},
    };
    for (const auto& row : cases) {
        SCOPED_TRACE(row.defect);
        std::string bytes = whole;
        row.damage(bytes);
        ExpectFailure(folder_.Write(L"b.laz", bytes));
    }
}

TEST_F(LazReadPointsTest, AChunkThatIsShorterThanItsPlaceIsDamaged) {
    std::string records;
    const std::string bytes = WithVaryingChunks(folder_, {2, 1, 28}, {21000, 21000, 21000}, records, "x");
    ExpectFailure(folder_.Write(L"b.laz", bytes));
}

TEST_F(LazReadPointsTest, OfSeveralFailuresTheFirstInTheFileCounts) {
    WriteSample(laz_, {2, 1, 28, 400000, false, 20000}, true);
    for (const unsigned threads : kThreads) {
        std::wstring reason;
        const auto fail = [](std::uint64_t first, std::span<const std::byte>) {
            if (first >= 100000) {
                throw LDataError(std::to_wstring(first));
            }
            return true;
        };
        EXPECT_FALSE(OrvexUtilities::LAZReadPoints(laz_, threads, fail, reason));
        EXPECT_EQ(reason, L"100000") << threads;
    }
}

TEST_F(LazReadPointsTest, TheSinkStopsTheReading) {
    WriteSample(laz_, {2, 1, 28, 400000, false, 20000}, true);
    for (const unsigned threads : kThreads) {
        std::wstring reason;
        std::atomic<unsigned> calls = 0;
        const auto stop = [&calls](std::uint64_t, std::span<const std::byte>) { return ++calls < 3; };
        EXPECT_FALSE(OrvexUtilities::LAZReadPoints(laz_, threads, stop, reason));
        EXPECT_EQ(reason, L"");
        EXPECT_LT(calls, 3 + threads);
    }
}

TEST_F(LazReadPointsTest, TheHeadIsThatOfTheDecompressedFile) {
    for (const bool compatible : {false, true}) {
        WriteSample(laz_, {4, 7, 36, 10, compatible}, true);
        WriteSample(las_, {4, 7, 36, 10}, false);
        std::string head;
        std::wstring reason;
        ASSERT_TRUE(OrvexUtilities::LAZReadHead(laz_, head, reason)) << ToUtf8(reason);
        const std::string las = ReadFile(las_);
        EXPECT_EQ(head.size(), At<std::uint32_t>(head, 96));
        EXPECT_EQ(head.substr(104, 3), las.substr(104, 3)) << "format and record length";
        if (!compatible) {
            EXPECT_TRUE(head == las.substr(0, head.size()));
        }
    }
    std::string head = "kept";
    std::wstring reason;
    EXPECT_FALSE(OrvexUtilities::LAZReadHead(folder_.Name(L"missing.laz"), head, reason));
    EXPECT_NE(reason, L"");
}

}  // namespace
}  // namespace orvex
