#include "las/CompanionRecords.h"

#include <gtest/gtest.h>

#include <limits>

#include "las/testing/LasBuilder.h"

namespace orvex {
namespace {

std::string StringOf(std::span<const std::byte> bytes) {
    return {reinterpret_cast<const char*>(bytes.data()), bytes.size()};
}

std::string Header(std::uint16_t reserved, std::uint16_t recordId, std::uint16_t length,
                   std::string_view description) {
    std::string text = testing::Bytes(reserved) + "BrightwellMarsh" + '\0' + testing::Bytes(recordId, length);
    text += description;
    text.resize(54);
    return text;
}

TEST(CompanionRecords, AreWrittenByteByByte) {
    std::string index = Header(0, 64, 81, "Brightwell Marsh Software Index") + std::string(81, '\0');
    index[54 + 45] = 4;
    EXPECT_EQ(StringOf(MakeIndexVlr()), index);
    EXPECT_EQ(StringOf(MakeIndexVlr(0)).substr(0, 2), "\xBB\xAA");
    EXPECT_EQ(StringOf(MakeIndexVlr(1)).substr(0, 2), std::string(2, '\0'));

    ThinnedVlrHead thinned = MakeThinnedVlr();
    EXPECT_EQ(StringOf(thinned), Header(0, 65, 12, "BrightwellMarshSoftware Thinned") +
                                     testing::Bytes(0U, 0U, std::uint16_t{28}, std::uint16_t{0xEEFF}));
    ASSERT_TRUE(FillThinnedVlr(thinned, {77, 100, 30}));
    EXPECT_EQ(StringOf(thinned), Header(0, 65, 3012, "BrightwellMarshSoftware Thinned") +
                                     testing::Bytes(77U, 100U, std::uint16_t{30}, std::uint16_t{0xEEFF}));
}

TEST(CompanionRecords, FillRefusesMoreThanOneVlrHolds) {
    ThinnedVlrHead record = MakeThinnedVlr();
    const ThinnedVlrHead before = record;
    EXPECT_FALSE(FillThinnedVlr(record, {1, 2341, 28}));
    EXPECT_FALSE(FillThinnedVlr(record, {1, 0xFFFFFFFF, 0xFFFF}));
    EXPECT_EQ(record, before);
    EXPECT_TRUE(FillThinnedVlr(record, {1, 2340, 28}));
}

TEST(CompanionRecords, CheckTakesMarkedRecordsOnly) {
    ThinnedVlrHead written = MakeThinnedVlr();
    FillThinnedVlr(written, {5, 2, 28});
    EXPECT_FALSE(CheckThinnedVlr(written, 0)) << "as written, the reserved field is 0";
    ThinnedVlrHead marked = MakeThinnedVlr(0);
    EXPECT_TRUE(CheckThinnedVlr(marked, 0));
    FillThinnedVlr(marked, {5, 2, 28});
    const auto head = CheckThinnedVlr(marked, 0);
    ASSERT_TRUE(head);
    EXPECT_EQ(head->value, 5U);
    EXPECT_EQ(head->count, 2U);
    EXPECT_EQ(head->entrySize, 28);

    const std::string buffer = "0123" + StringOf(marked);
    const auto bytes = std::as_bytes(std::span(buffer));
    EXPECT_TRUE(CheckThinnedVlr(bytes, 4));
    EXPECT_FALSE(CheckThinnedVlr(bytes, 5));
    EXPECT_FALSE(CheckThinnedVlr(bytes.first(bytes.size() - 1), 4));
    EXPECT_FALSE(CheckThinnedVlr(bytes, std::numeric_limits<std::uint64_t>::max()));
    marked[20] = std::byte{69};
    EXPECT_FALSE(CheckThinnedVlr(marked, 0)) << "the length is not that of the entries";
    // 0x10000 * 0x10000 must not count as 0 entries.
    for (const std::size_t at : {60U, 62U}) {
        marked[at] = std::byte{1};
    }
    marked[20] = std::byte{12};
    EXPECT_FALSE(CheckThinnedVlr(marked, 0));
}

TEST(CompanionRecords, CountsVlrsAndBytes) {
    EXPECT_EQ(ThinnedEntriesPerVlr(28), 2340U);
    EXPECT_EQ(ThinnedEntriesPerVlr(1), 65523U);
    EXPECT_EQ(ThinnedEntriesPerVlr(65523), 1U);
    EXPECT_EQ(ThinnedEntriesPerVlr(65524), 0U);
    EXPECT_EQ(ThinnedEntriesPerVlr(0), 0U);
    const struct {
        std::uint32_t entries;
        std::uint64_t vlrs, bytes;
    } cases[] = {
        {0, 0, 0}, {1, 1, 94}, {2340, 1, 65586}, {2341, 2, 65680}, {0xFFFFFFFF, 1835457, 120380224422}};
    for (const auto& expected : cases) {
        EXPECT_EQ(ThinnedVlrCount(expected.entries, 28), expected.vlrs);
        EXPECT_EQ(ThinnedBytesNeeded(expected.entries, 28), expected.bytes);
    }
    EXPECT_EQ(ThinnedVlrCount(10, 65535), 0U);
}

}  // namespace
}  // namespace orvex
