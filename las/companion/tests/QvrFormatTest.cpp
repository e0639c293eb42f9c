#include "las/companion/QvrFormat.h"

#include <gtest/gtest.h>

#include <limits>

#include "las/LasPointViews.h"
#include "support/testing/Bytes.h"

namespace orvex {
namespace {

constexpr std::int32_t kLeast = std::numeric_limits<std::int32_t>::min();
constexpr std::int32_t kMost = std::numeric_limits<std::int32_t>::max();

TEST(QvrFormat, RootBoxIsAboutACubeAndHoldsItsPoints) {
    using Sizes = std::array<std::uint8_t, 3>;
    struct {
        const char* name;
        QvrPosition minimum, maximum;
        std::array<double, 3> scale;
        Sizes expected;
    } const cases[] = {
        {"one point", {5, 6, 7}, {5, 6, 7}, {1, 1, 1}, {0, 0, 0}},
        {"a power of two needs one more", {0, 0, 0}, {8, 7, 0}, {1, 1, 1}, {4, 4, 4}},
        {"other scales", {0, 0, 0}, {1023, 10, 10}, {0.001, 0.01, 0.1}, {11, 7, 4}},
        {"a tower", {0, 0, 0}, {99, 99, 6000}, {1, 1, 1}, {13, 13, 13}},
        {"degrees beside metres", {0, 0, 0}, {100000, 50000, 9999}, {1e-7, 1e-7, 0.01}, {17, 17, 14}},
        {"the whole range", {kLeast, kLeast, kLeast}, {kMost, kMost, kMost}, {1, 1, 1}, {32, 32, 32}},
        {"no more than the whole range", {0, 0, 0}, {kMost, 1, 1}, {1, 1e-9, 1}, {31, 32, 31}},
        {"scales that are none",
         {0, 0, 0},
         {7, 7, 7},
         {0, -1, std::numeric_limits<double>::infinity()},
         {3, 3, 3}},
    };
    for (const auto& [name, minimum, maximum, scale, expected] : cases) {
        const QvrBox box = QvrBox::Around(minimum, maximum, scale);
        EXPECT_EQ(box.log2Size, expected) << name;
        EXPECT_TRUE(box.Contains(minimum) && box.Contains(maximum)) << name;
    }
    const QvrBox box{{10, 10, 10}, {2, 2, 0}};
    EXPECT_TRUE(box.Contains({13, 13, 10}));
    EXPECT_FALSE(box.Contains({14, 13, 10}) || box.Contains({13, 9, 10}) || box.Contains({13, 13, 11}));
}

// The code, octant by octant, leads to cells that hold the position.
TEST(QvrFormat, CodesNameTheOctants) {
    const QvrBox boxes[] = {{{-100, 50, kLeast}, {3, 12, 32}}, {{kLeast, kLeast, kLeast}, {32, 32, 32}}};
    const QvrPosition positions[] = {{-100, 50, kLeast}, {-93, 4145, kMost}, {-96, 2098, 0}, {-97, 51, -77}};
    for (const QvrBox& box : boxes) {
        for (const QvrPosition& position : positions) {
            const QvrRawBox root = box.Cell(position, 0);
            LasExtent cell{root.low, root.high};
            const std::uint64_t code = box.Code(position);
            for (unsigned depth = 0; depth <= kQvrLevels; ++depth) {
                const QvrRawBox found = box.Cell(position, depth);
                EXPECT_EQ(found.low, cell.minimum) << depth;
                EXPECT_EQ(found.high, cell.maximum) << depth;
                for (std::size_t axis = 0; axis < 3; ++axis) {
                    EXPECT_TRUE(found.low[axis] <= position[axis] && position[axis] < found.high[axis]);
                }
                if (depth < kQvrLevels) {
                    cell = Octant(cell, (code >> (60 - 3 * depth)) & 7U);
                }
            }
            EXPECT_EQ(code >> 63U, 0U);
        }
    }
}

std::string StringOf(std::span<const std::byte> bytes) {
    return {reinterpret_cast<const char*>(bytes.data()), bytes.size()};
}

TEST(QvrFormat, IndexIsWrittenByteByByte) {
    QvrIndex index;
    index.factor = 7;
    index.sourceSize = 0x123456789A;
    index.sourceTime = -5;
    index.sourcePoints = 0xFEDCBA9876;
    index.sourceHeaderHash = 1;
    index.seed = 2;
    index.box = {{-1, 3, 4}, {32, 0, 9}};
    index.isRandom = false;
    index.entryCount = 77;
    const IndexVlr record = EncodeQvrIndex(index);
    const auto payload = std::span(record).subspan(las::kVlrHeaderSize);
    using Byte = std::uint8_t;
    const std::string expected =
        testing::Bytes(Byte{0}, std::uint16_t{1}, std::uint16_t{7}, std::uint64_t{0x123456789A},
                       std::int64_t{-5}, std::uint64_t{0xFEDCBA9876}, std::uint64_t{1}, std::uint64_t{2}, 4U,
                       -1, 3, 4, Byte{32}, Byte{0}, Byte{9}, Byte{0}, 77U) +
        std::string(12, '\0');
    EXPECT_EQ(StringOf(payload), expected);
    EXPECT_EQ(DecodeQvrIndex(payload), index);
    EXPECT_FALSE(DecodeQvrIndex(payload.first(80)));
    // Version, factor 0, size of the box, order.
    for (const auto& [offset, value] : {std::pair{1, 2}, {3, 0}, {62, 33}, {64, 2}}) {
        std::vector<std::byte> damaged(payload.begin(), payload.end());
        damaged[static_cast<std::size_t>(offset)] = static_cast<std::byte>(value);
        EXPECT_FALSE(DecodeQvrIndex(damaged)) << offset;
    }
}

TEST(QvrFormat, EntriesFillSeveralRecords) {
    std::vector<QvrEntry> entries(2341, {{1, 2, 3}, 4, 5, 6, 7});
    entries.back() = {{-1, -2, -3}, 0x123456789A, 0xFEDCBA98, 148, 21};
    const std::string bytes = StringOf(EncodeQvrEntries(entries));
    ASSERT_EQ(bytes.size(), ThinnedBytesNeeded(2341, kThinnedEntrySize));
    const std::size_t second = 66 + 2340 * 28;
    const std::string head = testing::Bytes(2340U, 1U, std::uint16_t{28}, std::uint16_t{0xEEFF});
    EXPECT_EQ(bytes.substr(second + 54, 12), head) << "number of its first entry, entries";
    EXPECT_EQ(bytes.substr(second + 66), testing::Bytes(-1, -2, -3, std::uint64_t{0x123456789A}, 0xFEDCBA98U,
                                                        std::uint16_t{148}, std::uint16_t{21}));
    const auto stored = std::as_bytes(std::span(bytes));
    EXPECT_EQ(DecodeQvrEntry(stored.subspan(66).first<28>()), entries.front());
    EXPECT_EQ(DecodeQvrEntry(stored.last<28>()), entries.back());
    EXPECT_TRUE(EncodeQvrEntries({}).empty());
}

// Companions that exist must stay what they are.
TEST(QvrFormat, HashIsThatOfTheDocument) {
    const auto hash = [](std::string_view text, std::uint64_t seed) {
        return QvrHash(std::as_bytes(std::span(text)), seed);
    };
    EXPECT_EQ(hash("", 0), 0U);
    EXPECT_EQ(hash("12345678", 0), 0x546AE984F8820CE3U);
    EXPECT_EQ(hash("123456789", 3), 0x52010DA99E12DB71U);
    EXPECT_NE(hash("1", 0), hash(std::string_view("1\0", 2), 0));
}

}  // namespace
}  // namespace orvex
