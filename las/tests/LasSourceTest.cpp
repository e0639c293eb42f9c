#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>

#include "las/FileIdRegistry.h"
#include "las/LasRow.h"
#include "las/testing/LasFiles.h"
#include "support/Text.h"

namespace orvex {
namespace {

using ::testing::HasSubstr;
using testing::LasBuilder;
using testing::MemorySource;

std::vector<std::string> CodesOf(const LasRow& row) {
    std::vector<std::string> codes;
    for (const Finding& finding : row.findings) {
        codes.emplace_back(finding.code);
    }
    return codes;
}

bool Has(const LasRow& row, const FindingKind& kind) {
    return std::ranges::count(CodesOf(row), kind.code) == 1;
}

TEST(LasSource, RowIsThatOfTheSameFileOnDisk) {
    const testing::LasFolder folder;
    std::vector<LasBuilder> files = testing::LyingLasFiles();
    files.push_back(testing::RichLas());
    files.push_back(LasBuilder(12, 3).AddPoints(20).ProjectedEpsg(25832));
    // Not every system maps an empty file.
    for (const std::size_t size : {1U, 226U, 227U, 300U, 375U, 500U, 1000U}) {
        files.push_back(testing::RichLas().Cut(size));
    }
    files.push_back(testing::RichLas().Lie(0, 'X'));
    for (std::size_t i = 0; i < files.size(); ++i) {
        const std::wstring path = folder.Write(files[i]);
        const MemorySource source(files[i].Build());
        EXPECT_EQ(testing::RowText(InspectLasSource(path, source), false),
                  testing::RowText(InspectLasFile(path), false))
            << i;
    }
}

// The name of a file elsewhere may also be that of a file here.
TEST(LasSource, NothingOfADiskIsLookedAt) {
    constexpr int kExternalWaveform = 4;
    const testing::LasFolder folder;
    const std::wstring name = WithExtension(folder.Write(L"a.qvr", ""), L".las");
    const LasBuilder builder =
        LasBuilder(13, 4).AddPoints(5).EncodingBits(kExternalWaveform).MarkCompressed();
    const LasRow row = InspectLasSource(name, MemorySource(builder.Build()));
    ASSERT_TRUE(row.loadable);
    EXPECT_EQ(row.file->GetCompanionStatus(), 0);
    EXPECT_FALSE(Has(row, las_finding::kWaveformFileMissing));
    EXPECT_FALSE(Has(row, las_finding::kCompressionDamaged));
    EXPECT_EQ(row.file->RegisteredId(), FileIdRegistry::kAny);
    EXPECT_EQ(row.file->FileName(), name);
}

// What was not read is neither missing nor damaged.
TEST(LasSource, RecordsThatWereNotReadAreOneFinding) {
    LasBuilder builder = LasBuilder(14, 6).AddPoints(5).AddExtraBytes("reflectance", 10, 8);
    for (int i = 0; i < 200; ++i) {
        builder.AddVlr("filler", 1, std::string(200, 'v')).AddEvlr("filler", 1, std::string(200, 'e'));
    }
    builder.Wkt("GEOGCS[\"WGS 84\"]", true);
    const std::string bytes = builder.Build();
    const struct {
        std::uint64_t most;
        std::size_t vlrs, evlrs;
    } cases[] = {{400, 0, 0}, {20'000, 64, 0}, {53'000, 201, 19}, {60'000, 201, 136}};
    for (const auto& [most, vlrs, evlrs] : cases) {
        const LasRow row = InspectLasSource(L"a.las", MemorySource(bytes, most));
        ASSERT_TRUE(row.loadable) << most;
        EXPECT_EQ(row.file->GetVLRs().size(), vlrs) << most;
        EXPECT_EQ(row.file->GetEVLRs().size(), evlrs) << most;
        EXPECT_EQ(CodesOf(row), std::vector<std::string>{las_finding::kRecordsNotRead.code}) << most;
        EXPECT_THAT(ToUtf8(row.summary), HasSubstr(std::to_string(vlrs) + " of 201 variable length records"));
    }
    EXPECT_FALSE(InspectLasSource(L"a.las", MemorySource(bytes)).file->HasUnreadRecords());
    // A record whose data was not read is not listed: it would count as one that is too large.
    const std::string wkt = LasBuilder(14, 6).AddPoints(1).Wkt(std::string(1000, 'w'), true).Build();
    EXPECT_EQ(CodesOf(InspectLasSource(L"a.las", MemorySource(wkt, 900))),
              std::vector<std::string>{las_finding::kRecordsNotRead.code});
}

TEST(LasSource, FailureToReadIsTheReason) {
    const std::string bytes = testing::RichLas().Build();
    for (const std::uint64_t most : {0U, 400U, 700U}) {
        const LasRow row = InspectLasSource(L"a.las", MemorySource(bytes, most, 5));
        EXPECT_FALSE(row.loadable) << most;
        EXPECT_FALSE(row.summary.empty()) << most;
        EXPECT_EQ(row.fileSize, bytes.size()) << most;
    }
    // Without its header nothing of a file is known.
    EXPECT_FALSE(InspectLasSource(L"a.las", MemorySource(bytes, 100)).loadable);
}

}  // namespace
}  // namespace orvex
