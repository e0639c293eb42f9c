#include "las/HeaderBlock.h"

#include <gtest/gtest.h>

#include <utility>
#include <vector>

#include "las/testing/LasBuilder.h"

namespace orvex {
namespace {

using testing::LasBuilder;
using Reads = std::vector<std::pair<std::uint64_t, std::size_t>>;

/// A file in memory that keeps what was asked of it.
struct FakeFile {
    std::string bytes;
    std::uint64_t failFrom = ~std::uint64_t{0};
    Reads reads;

    HeaderBlock::ReadBytes Reader() {
        return [this](std::uint64_t offset, std::span<std::byte> buffer, std::size_t& read) -> SystemError {
            reads.emplace_back(offset, buffer.size());
            if (offset >= failFrom) {
                return 5;
            }
            const std::string part = offset < bytes.size() ? bytes.substr(offset, buffer.size()) : "";
            std::memcpy(buffer.data(), part.data(), part.size());
            read = part.size();
            return 0;
        };
    }
};

TEST(HeaderBlock, ReadsAsMuchAsTheHeaderSizeSays) {
    const struct {
        std::uint16_t headerSize;
        Reads reads;
    } cases[] = {
        {0, {{0, 227}}},
        {227, {{0, 227}}},
        {228, {{0, 227}, {227, 8}}},
        {235, {{0, 227}, {227, 8}}},
        {236, {{0, 227}, {227, 8}, {235, 1}}},
        {375, {{0, 227}, {227, 8}, {235, 140}}},
        {400, {{0, 227}, {227, 8}, {235, 140}}},
        {65535, {{0, 227}, {227, 8}, {235, 140}}},
    };
    for (const auto& expected : cases) {
        FakeFile file{std::string(70000, '\1'), ~std::uint64_t{0}, {}};
        std::memcpy(file.bytes.data() + 94, &expected.headerSize, 2);
        HeaderBlock block;
        EXPECT_EQ(block.Copy(file.Reader()), HeaderBlock::Outcome::Ready);
        EXPECT_EQ(file.reads, expected.reads) << expected.headerSize;
    }
}

TEST(HeaderBlock, NeedsTheLegacyHeaderOnly) {
    FakeFile file{LasBuilder(14, 6).AddPoints(3).Lie<std::uint64_t>(227, 77).Build(), ~std::uint64_t{0}, {}};
    const auto copyOf = [&](std::size_t length) {
        FakeFile cut{file.bytes.substr(0, length), ~std::uint64_t{0}, {}};
        HeaderBlock block;
        const auto outcome = block.Copy(cut.Reader());
        return std::make_tuple(outcome, block.Header().WaveformStart(), block.Header().PointCount());
    };
    EXPECT_EQ(std::get<0>(copyOf(0)), HeaderBlock::Outcome::TooShort);
    EXPECT_EQ(std::get<0>(copyOf(226)), HeaderBlock::Outcome::TooShort);
    EXPECT_EQ(copyOf(227), std::make_tuple(HeaderBlock::Outcome::Ready, 0U, 0U));
    // Half a field is no field.
    EXPECT_EQ(copyOf(229), std::make_tuple(HeaderBlock::Outcome::Ready, 0U, 0U));
    EXPECT_EQ(copyOf(235), std::make_tuple(HeaderBlock::Outcome::Ready, 77U, 0U));
    EXPECT_EQ(copyOf(255), std::make_tuple(HeaderBlock::Outcome::Ready, 77U, 3U));
}

TEST(HeaderBlock, TellsAReadErrorFromAShortFile) {
    const std::string bytes = LasBuilder(14, 6).Build();
    const auto outcomeFailingFrom = [&](std::uint64_t offset) {
        FakeFile file{bytes, offset, {}};
        return HeaderBlock().Copy(file.Reader());
    };
    EXPECT_EQ(outcomeFailingFrom(0), HeaderBlock::Outcome::Failed);
    EXPECT_EQ(outcomeFailingFrom(235), HeaderBlock::Outcome::Failed);
    EXPECT_EQ(outcomeFailingFrom(236), HeaderBlock::Outcome::Ready);
}

}  // namespace
}  // namespace orvex
