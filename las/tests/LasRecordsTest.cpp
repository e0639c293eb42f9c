#include "las/LasRecords.h"

#include <gtest/gtest.h>

#include "las/ExtraBytes.h"
#include "las/testing/LasBuilder.h"
#include "support/LDataError.h"

namespace orvex {
namespace {

using testing::LasBuilder;

/// The record ids of the VLRs that a walk finds in the bytes up to the points.
std::vector<int> Walk(const std::string& bytes) {
    const auto all = std::as_bytes(std::span(bytes));
    const LasHeader header(all);
    std::vector<int> ids;
    for (const VlrView& vlr :
         WalkVlrs(all.first(std::min<std::size_t>(all.size(), header.OffsetToPoints())), header)) {
        ids.push_back(vlr.RecordId());
    }
    return ids;
}

LasBuilder ThreeRecords() {
    return LasBuilder().AddVlr("a", 1, "12345").AddVlr("b", 2, "").AddVlr("c", 3, "123").AddPoints(4);
}

TEST(WalkVlrs, StopsAtTheCountTheAreaOrTheHeader) {
    constexpr std::size_t kHeader = 227;
    constexpr std::size_t kSecond = kHeader + 54 + 5;
    constexpr std::size_t kEnd = kSecond + 54 + 54 + 3;
    const struct {
        const char* what;
        std::string bytes;
        std::vector<int> ids;
    } cases[] = {
        {"all", ThreeRecords().Build(), {1, 2, 3}},
        {"the count is a bound", ThreeRecords().Lie<std::uint32_t>(100, 2).Build(), {1, 2}},
        {"a count beyond the area", ThreeRecords().Lie<std::uint32_t>(100, 0xFFFFFFFF).Build(), {1, 2, 3}},
        {"no count", ThreeRecords().Lie<std::uint32_t>(100, 0).Build(), {}},
        {"a record into the points", ThreeRecords().Lie<std::uint16_t>(kSecond + 20, 65535).Build(), {1, 2}},
        {"room for the last header", ThreeRecords().Lie<std::uint32_t>(96, kEnd - 3).Build(), {1, 2, 3}},
        {"no room for the last header", ThreeRecords().Lie<std::uint32_t>(96, kEnd - 4).Build(), {1, 2}},
        {"offset below one header", ThreeRecords().Lie<std::uint32_t>(96, 53).Build(), {}},
        {"offset 0", ThreeRecords().Lie<std::uint32_t>(96, 0).Build(), {}},
        {"header size 0", ThreeRecords().Lie<std::uint16_t>(94, 0).Build(), {}},
        {"header beyond the points", ThreeRecords().Lie<std::uint16_t>(94, 65535).Build(), {}},
        {"shortened area", ThreeRecords().Cut(kSecond + 54).Build(), {1, 2}},
    };
    for (const auto& expected : cases) {
        EXPECT_EQ(Walk(expected.bytes), expected.ids) << expected.what;
    }
}

TEST(WalkVlrs, BoundsTheNumberOfEmptyRecords) {
    std::string bytes = LasBuilder().Lie<std::uint32_t>(100, 0xFFFFFFFF).Build();
    bytes.resize(227 + 54 * (kMostRecords + 10));
    const std::uint32_t offset = static_cast<std::uint32_t>(bytes.size());
    std::memcpy(bytes.data() + 96, &offset, 4);
    EXPECT_EQ(Walk(bytes).size(), kMostRecords);
}

TEST(VlrView, ReadsItsFieldsAndCutsItsData) {
    const std::string bytes =
        LasBuilder()
            .AddVlr("sixteen letters!", 65535, "0123456789", "a description of thirty-two char", 0xAABB)
            .Build();
    const auto all = std::as_bytes(std::span(bytes));
    const VlrView whole(all.subspan(227), 227);
    EXPECT_EQ(whole.Reserved(), 0xAABB);
    EXPECT_EQ(whole.UserId(), "sixteen letters!");
    EXPECT_EQ(whole.RecordId(), 65535);
    EXPECT_EQ(whole.RecordLength(), 10U);
    EXPECT_EQ(whole.Description(), "a description of thirty-two char");
    EXPECT_EQ(whole.Data().size(), 10U);
    EXPECT_FALSE(whole.IsTruncated());
    const VlrView cut(all.subspan(227, 54 + 4), 227);
    EXPECT_EQ(cut.RecordLength(), 10U);
    EXPECT_EQ(cut.Data().size(), 4U);
    EXPECT_TRUE(cut.IsTruncated());
}

std::string Descriptor(std::uint8_t dataType, std::uint8_t options, std::string_view name) {
    std::string bytes(192, '\0');
    bytes[2] = static_cast<char>(dataType);
    bytes[3] = static_cast<char>(options);
    bytes.replace(4, name.size(), name);
    return bytes;
}

TEST(ExtraBytes, AddsUpTheSizesOfTheDataTypes) {
    std::string data;
    for (std::uint8_t dataType = 0; dataType <= 10; ++dataType) {
        data += Descriptor(dataType, 3, "attribute " + std::to_string(dataType));
    }
    ExtraBytes extraBytes;
    extraBytes.GetExtraByteOffsets(std::as_bytes(std::span(data)));
    const std::uint64_t offsets[] = {0, 3, 4, 5, 7, 9, 13, 17, 25, 33, 37};
    ASSERT_EQ(extraBytes.Attributes().size(), 11U);
    for (std::size_t i = 0; i < 11; ++i) {
        EXPECT_EQ(extraBytes.Attributes()[i].offset, offsets[i]) << i;
        EXPECT_EQ(extraBytes.Find(L"attribute " + std::to_wstring(i)), &extraBytes.Attributes()[i]);
    }
    EXPECT_EQ(extraBytes.Attributes().back().size, 8);
    EXPECT_EQ(extraBytes.Find(L"attribute"), nullptr);
}

TEST(ExtraBytes, CountsWholeDescriptorsUpToTheLimit) {
    const std::string data = Descriptor(1, 0, "a") + Descriptor(2, 0, "b") + Descriptor(11, 0, "c");
    const auto countOf = [&](std::size_t length, std::size_t most) {
        ExtraBytes extraBytes;
        extraBytes.GetExtraByteOffsets(std::as_bytes(std::span(data)).first(length), most);
        return extraBytes.Attributes().size();
    };
    EXPECT_EQ(countOf(191, 9), 0U);
    EXPECT_EQ(countOf(192, 9), 1U);
    EXPECT_EQ(countOf(575, 9), 2U);
    EXPECT_EQ(countOf(576, 2), 2U);
    EXPECT_THROW(countOf(576, 3), LDataError);
}

}  // namespace
}  // namespace orvex
