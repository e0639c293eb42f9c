// Damaged files give a reading or a message, in bounded time and memory; never a crash.
#include <gtest/gtest.h>

#include <cstdint>
#include <filesystem>

#include "las/LasRow.h"
#include "las/LasValidate.h"
#include "las/testing/LasFiles.h"
#include "support/testing/TemporaryFolder.h"
#include "support/testing/TestSystem.h"

namespace orvex {
namespace {

#if defined(__SANITIZE_THREAD__) || defined(__SANITIZE_ADDRESS__)
constexpr std::uint64_t kMostMemory = std::uint64_t{1500} << 20U;  // they keep books of all memory
#else
constexpr std::uint64_t kMostMemory = std::uint64_t{600} << 20U;
#endif

using testing::LasBuilder;
using testing::RichLas;
using testing::RowText;

class HostileFiles : public ::testing::Test {
  protected:
    /// Everything there is to the bytes, in one text.
    std::wstring Read(const std::string& bytes, bool readOnly) const {
        // A file that is truncated and written anew goes to the disk when it is closed, which takes long.
        std::filesystem::remove(folder_.Path() / "a.las");
        std::wstring text = testing::ReadAllOfLas(folder_.Write(L"a.las", bytes), readOnly);
        EXPECT_FALSE(text.empty());
        return text;
    }

    const testing::LasFolder folder_{};
};

TEST_F(HostileFiles, TwinsReadAlike) {
    for (const LasBuilder& builder :
         {RichLas(), LasBuilder(10, 0).AddPoints(2), LasBuilder(13, 4).AddPoints(2).AddVlr("a", 1, "b"),
          LasBuilder(14).HeaderSize(227).AddPoints(9), RichLas().MarkCompressed()}) {
        EXPECT_EQ(Read(builder.Build(), true), Read(builder.Build(), false));
    }
}

TEST_F(HostileFiles, EveryTruncation) {
    const std::string whole = RichLas().Build();
    for (std::size_t length = 0; length < whole.size(); ++length) {
        const std::wstring text = Read(whole.substr(0, length), true);
        Read(whole.substr(0, length), false);
        // An empty file may fail earlier: not every system maps one.
        if (length > 0 && length < 227) {
            EXPECT_TRUE(text.starts_with(L"ReadHeaderBlock failed on '")) << length;
        }
    }
}

TEST_F(HostileFiles, EveryByteOfTheHeaderAndTheRecords) {
    const std::string whole = RichLas().Build();
    const std::size_t tried = 375 + 54 * 4 + 81;
    for (std::size_t i = 0; i < tried; ++i) {
        for (const char value : {'\x00', '\x01', '\x7F', '\x80', '\xFF'}) {
            std::string bytes = whole;
            bytes[i] = value;
            Read(bytes, (i + static_cast<unsigned char>(value)) % 2 == 0);
        }
    }
}

TEST_F(HostileFiles, LiesInASmallFileCostNothing) {
    for (const LasBuilder& builder : testing::LyingLasFiles()) {
        Read(builder.Build(), true);
        Read(builder.Build(), false);
    }
}

TEST_F(HostileFiles, LiesInAHugeSparseFileAreBounded) {
    // Room for eighty million empty records of either kind, and for a VLR area of four gigabytes.
    const std::wstring path = folder_.Write(LasBuilder(14, 6)
                                                .Lie<std::uint32_t>(96, 0xFFFFFFFF)
                                                .Lie<std::uint32_t>(100, 0xFFFFFFFF)
                                                .Lie<std::uint64_t>(235, 400)
                                                .Lie<std::uint32_t>(243, 0xFFFFFFFF)
                                                .Lie<std::uint64_t>(247, ~std::uint64_t{0}));
    testing::GrowSparse(path, std::uint64_t{6} << 30U);
    for (const bool readOnly : {true, false}) {
        const auto file = LASFile::Open(path, readOnly, true);
        EXPECT_EQ(file->GetVLRs().size(), kMostRecords);
        EXPECT_EQ(file->GetEVLRs().size(), kMostRecords);
        EXPECT_FALSE(ValidateLas(*file).empty());
    }
    EXPECT_NE(RowText(path).find(L"only the first 65,536 are listed"), std::wstring::npos);
    EXPECT_LT(testing::PeakMemory(), kMostMemory);
}

// Sparse files with records of CRS data that no file needs: each is listed with what can be read, the rest is
// said in words, and a list of them keeps little.
TEST_F(HostileFiles, HugeCrsRecordsCostNothing) {
    constexpr std::uint64_t kHuge = std::uint64_t{6} << 30U;
    const LasBuilder keys = LasBuilder(14, 1).AddPoint(0, 0, 0).ProjectedEpsg(25832);
    const std::size_t headers = keys.Build().size();
    std::vector<LasRow> rows;
    for (int i = 0; i < 40; ++i) {
        const bool isWkt = i % 2 == 0;
        LasBuilder builder = keys;
        builder.AddEvlr("LASF_Projection", isWkt ? 2112 : 34737, "").Lie<std::uint64_t>(headers + 20, kHuge);
        const std::wstring path =
            folder_.Write(builder.EncodingBits(isWkt ? 16 : 0), std::to_wstring(i) + L".las");
        testing::GrowSparse(path, headers + 60 + kHuge);
        LasRow& row = rows.emplace_back(InspectLasFile(path));
        ASSERT_TRUE(row.loadable);
        EXPECT_EQ(row.crs->epsg, 25832) << i;
        EXPECT_EQ(FindingsText(row),
                  L"The record LASF_Projection " + std::to_wstring(isWkt ? 2112 : 34737) +
                      L" is too large to be read: it holds 6442.5 MB, and a file may bring 1 "
                      L"MB of such data.");
    }
    EXPECT_LT(testing::PeakMemory(), kMostMemory);
}

TEST_F(HostileFiles, ARowKeepsNoVlrArea) {
    const auto before = testing::PeakMemory();
    std::vector<LasRow> rows;
    for (int i = 0; i < 30; ++i) {
        const std::wstring path =
            folder_.Write(LasBuilder(14, 6).Lie<std::uint32_t>(96, 60U << 20U).AddVlr("x", 1, "0123456789"),
                          std::to_wstring(i) + L".las");
        testing::GrowSparse(path, 60U << 20U);
        rows.push_back(InspectLasFile(path));
        EXPECT_EQ(rows.back().file->GetVLRs().size(), 1U);
    }
    EXPECT_LT(testing::PeakMemory(), before + (std::uint64_t{100} << 20U));
}

}  // namespace
}  // namespace orvex
