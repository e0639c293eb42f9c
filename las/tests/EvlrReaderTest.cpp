#include "las/EvlrReader.h"

#include <gtest/gtest.h>

#include "las/VlrArea.h"
#include "las/testing/LasBuilder.h"
#include "support/LDataError.h"
#include "support/Text.h"
#include "support/testing/SparseFile.h"
#include "support/testing/TemporaryFolder.h"

namespace orvex {
namespace {

using testing::Bytes;
using testing::TemporaryFolder;

/// A record header and its data; `length` is what the header says.
std::string Evlr(std::string_view userId, std::uint64_t length, std::string_view data) {
    std::string record(60, '\0');
    record.replace(2, userId.size(), userId);
    record.replace(20, 8, Bytes(length));
    return record.append(data);
}

class EvlrReaderTest : public ::testing::Test {
  protected:
    /// The number of records, or the text of the failure.
    std::wstring Read(const std::string& bytes, std::uint64_t start, std::uint32_t count,
                      bool mapData = false) {
        entries_.clear();  // a file with views on it is not written anew
        MappedFile file;
        EXPECT_EQ(file.Open(folder_.Write(L"evlrs.bin", bytes), true), 0);
        EXPECT_EQ(file.CreateMapping(), 0);
        try {
            entries_ = EvlrReader(file, mapData).Read(start, count);
            return std::to_wstring(entries_.size());
        } catch (const LDataError& error) {
            return error.Text();
        }
    }

    const TemporaryFolder folder_;
    std::vector<EvlrEntry> entries_;
};

TEST_F(EvlrReaderTest, SaysWhatIsWrong) {
    const std::wstring headerError = L"Failed to read EVLR header section of LAS file into memory.";
    const std::wstring dataError = L"Failed to read EVLR record data section of LAS file into memory.";
    const std::wstring skipError = L"Setting file pointer failed when skipping record data for evlr.";
    constexpr std::uint64_t kMost = ~std::uint64_t{0};
    const std::string pad(8, '.');
    const struct {
        const char* what;
        std::string bytes;
        std::uint64_t start;
        std::uint32_t count;
        std::wstring result;
    } cases[] = {
        {"none", pad + Evlr("a", 0, ""), 8, 0, L"0"},
        {"no start", pad + Evlr("a", 0, ""), 0, 1, L"0"},
        {"two", pad + Evlr("a", 3, "123") + Evlr("Kst", 2, "ab"), 8, 2, L"2"},
        {"one more than there are", pad + Evlr("a", 3, "123"), 8, 2, headerError},
        {"half a header", pad + Evlr("a", 0, "").substr(1), 8, 1, headerError},
        {"a count beyond reason", pad + Evlr("a", 0, ""), 8, 0xFFFFFFFF, headerError},
        {"start at the end", pad, 8, 1, headerError},
        {"start beyond the end", pad, 9000, 1, headerError},
        {"start at the last position", pad, kMost >> 1U, 1, headerError},
        {"start no file has", pad, kMost - 7, 1,
         L"Moving file pointer to the eVlr offset failed. Unable to populate the evlr list. evlrOffset (-8) "
         L"| "
         L"filesize (8)."},
        {"skipped data beyond the end", pad + Evlr("a", 9, "123"), 8, 1, L"1"},
        {"and a record behind it", pad + Evlr("a", 9, "123"), 8, 2, headerError},
        {"skipped data beyond any file", pad + Evlr("a", kMost, "123"), 8, 1, skipError},
        {"kept data beyond the end", pad + Evlr("Kst", 4, "123"), 8, 1, dataError},
        {"kept data beyond any file", pad + Evlr("LASF_Projection", kMost, "123"), 8, 1, dataError},
    };
    for (const auto& expected : cases) {
        EXPECT_EQ(Read(expected.bytes, expected.start, expected.count), expected.result) << expected.what;
    }
}

TEST_F(EvlrReaderTest, CutsMappedData) {
    for (const std::uint64_t length : {std::uint64_t{4}, ~std::uint64_t{0}}) {
        ASSERT_EQ(Read(Evlr("", 0, "") + Evlr("Kst", length, "123"), 60, 1, true), L"1");
        EXPECT_EQ(entries_[0].RecordLength(), length);
        EXPECT_TRUE(entries_[0].IsTruncated());
        ASSERT_EQ(entries_[0].Data().size(), 3U);
        EXPECT_EQ(entries_[0].Data()[2], std::byte{'3'});
    }
    ASSERT_EQ(Read(Evlr("", 0, "") + Evlr("Kst", 9, ""), 60, 1, true), L"1");
    EXPECT_TRUE(entries_[0].HasData());
    EXPECT_TRUE(entries_[0].Data().empty());
}

TEST_F(EvlrReaderTest, BoundsWhatASparseFileHolds) {
    // Five gigabytes of zeros are eighty million empty records.
    const std::wstring name = folder_.Write(L"sparse.bin", "");
    testing::GrowSparse(name, std::uint64_t{5} << 30U);
    MappedFile file;
    ASSERT_EQ(file.Open(name, true), 0);
    EXPECT_EQ(EvlrReader(file, false).Read(1, 0xFFFFFFFF).size(), kMostRecords);
}

TEST_F(EvlrReaderTest, MapsDataThatIsTooLargeToCopy) {
    const std::wstring name =
        folder_.Write(L"large.bin", std::string(8, '.') + Evlr("Kst", std::uint64_t{3} << 30U, "123"));
    testing::GrowSparse(name, std::uint64_t{4} << 30U);
    MappedFile file;
    ASSERT_EQ(file.Open(name, true), 0);
    ASSERT_EQ(file.CreateMapping(), 0);
    const auto entries = EvlrReader(file, false).Read(8, 1);
    ASSERT_EQ(entries.size(), 1U);
    EXPECT_EQ(entries[0].Data().size(), std::uint64_t{3} << 30U);
    EXPECT_EQ(entries[0].Data()[2], std::byte{'3'});
}

TEST_F(EvlrReaderTest, VlrAreaOfAFileOfZerosIsMapped) {
    const std::wstring name = folder_.Write(L"area.bin", "first");
    testing::GrowSparse(name, std::uint64_t{5} << 30U);
    MappedFile file;
    ASSERT_EQ(file.Open(name, true), 0);
    ASSERT_EQ(file.CreateMapping(), 0);
    VlrArea area;
    ASSERT_EQ(area.Load(file, std::uint64_t{5} << 30U, 0xFFFFFFFF, true), 0);
    EXPECT_TRUE(area.IsMapped());
    EXPECT_EQ(area.Bytes().size(), 0xFFFFFFFFU);
    EXPECT_EQ(area.Bytes()[0], std::byte{'f'});
}

}  // namespace
}  // namespace orvex
