#include "las/LasHeader.h"

#include <gtest/gtest.h>

#include "las/testing/LasBuilder.h"

namespace orvex {
namespace {

using testing::LasBuilder;

LasHeader HeaderOf(const std::string& bytes) {
    return LasHeader(std::as_bytes(std::span(bytes)));
}

TEST(LasHeader, ReadsEveryFieldAtItsPlace) {
    LasBuilder builder(14, 3);
    builder.Lie<std::uint16_t>(4, 11).Lie<std::uint16_t>(6, 19);
    builder.Lie<std::uint32_t>(8, 0x01234567).Lie<std::uint16_t>(12, 0x89AB).Lie<std::uint16_t>(14, 0xCDEF);
    builder.Lie<std::uint64_t>(16, 0x0807060504030201);
    builder.SystemIdentifier("scanner").GeneratingSoftware("a program with a name of 32 byte");
    builder.CreationDate(60, 2023);
    builder.Lie<std::uint32_t>(96, 4000000000).Lie<std::uint32_t>(100, 5).Lie<std::uint8_t>(104, 0xC7);
    builder.Lie<std::uint16_t>(105, 40).Lie<std::uint32_t>(107, 12);
    for (std::uint32_t i = 0; i < 12; ++i) {
        builder.Lie<double>(131 + 8 * i, 1.5 + i);
    }
    builder.Lie<std::uint64_t>(227, 1U).Lie<std::uint64_t>(235, std::uint64_t{1} << 40U);
    builder.Lie<std::uint32_t>(243, 9).Lie<std::uint64_t>(247, std::uint64_t{1} << 33U);
    builder.Lie<std::uint64_t>(255, 21).Lie<std::uint64_t>(367, 35);
    const std::string bytes = builder.Build();
    const LasHeader header = HeaderOf(bytes);

    EXPECT_TRUE(header.HasSignature());
    EXPECT_EQ(header.FileSourceId(), 11);
    EXPECT_EQ(header.GlobalEncoding(), 19);
    EXPECT_TRUE(header.HasStandardGpsTime() && header.HasWktBit() && header.HasInternalWaveform());
    EXPECT_EQ(header.ProjectId(), "01234567-89AB-CDEF-0102-030405060708");
    EXPECT_EQ(header.Version(), 14);
    EXPECT_EQ(header.SystemIdentifier(), "scanner");
    EXPECT_EQ(header.GeneratingSoftware(), "a program with a name of 32 byte");
    EXPECT_EQ(header.CreationDay(), 60);
    EXPECT_EQ(header.CreationYear(), 2023);
    EXPECT_EQ(header.HeaderSize(), 375);
    EXPECT_EQ(header.OffsetToPoints(), 4000000000U);
    EXPECT_EQ(header.VlrCount(), 5U);
    EXPECT_EQ(header.PointFormat(), 7);
    EXPECT_TRUE(header.IsCompressed());
    EXPECT_EQ(header.PointRecordLength(), 40);
    EXPECT_EQ(header.LegacyPointCount(), 12U);
    EXPECT_EQ(header.PointCount(), std::uint64_t{1} << 33U);
    EXPECT_EQ(header.Scale(), (std::array<double, 3>{1.5, 2.5, 3.5}));
    EXPECT_EQ(header.Offset(), (std::array<double, 3>{4.5, 5.5, 6.5}));
    EXPECT_EQ(header.Maximum(), (std::array<double, 3>{7.5, 9.5, 11.5}));
    EXPECT_EQ(header.Minimum(), (std::array<double, 3>{8.5, 10.5, 12.5}));
    EXPECT_EQ(header.WaveformStart(), 1U);
    EXPECT_EQ(header.EvlrStart(), std::uint64_t{1} << 40U);
    EXPECT_EQ(header.EvlrCount(), 9U);
    EXPECT_EQ(header.PointsOfReturn(1), 21U);
    EXPECT_EQ(header.PointsOfReturn(15), 35U);
    EXPECT_EQ(header.PointsOfReturn(0) + header.PointsOfReturn(16), 0U);
}

// Only LAS 1.4 has a 64-bit count.
TEST(LasHeader, OrdersVersionsByTheirCodes) {
    const struct {
        std::uint8_t major, minor;
        int code;
    } cases[] = {{1, 0, 0},  {1, 1, 1},  {2, 0, 2},  {1, 2, 3},  {1, 3, 4},      {1, 4, 5},
                 {1, 5, -1}, {2, 1, -1}, {0, 0, -1}, {3, 0, -1}, {126, 203, -1}, {255, 255, -1}};
    for (const auto& c : cases) {
        LasBuilder builder(14);
        builder.AddPoints(2).Lie(24, c.major).Lie(25, c.minor).Lie<std::uint64_t>(247, 4);
        const std::string bytes = builder.Build();
        EXPECT_EQ(HeaderOf(bytes).VersionCode(), c.code) << +c.major << "." << +c.minor;
        EXPECT_EQ(HeaderOf(bytes).Version(), c.major * 10 + c.minor);
        EXPECT_EQ(HeaderOf(bytes).PointCount(), c.code == 5 ? 4U : 2U);
    }
}

TEST(LasHeader, EndsAtItsStatedSize) {
    const struct {
        std::uint16_t size;
        std::uint64_t waveformStart, evlrStart, evlrCount, points;
    } cases[] = {{0, 0, 0, 0, 0},   {227, 0, 0, 0, 0}, {228, 7, 0, 0, 0}, {242, 7, 0, 0, 0},
                 {247, 7, 8, 2, 0}, {255, 7, 8, 2, 9}, {375, 7, 8, 2, 9}, {65535, 7, 8, 2, 9}};
    for (const auto& c : cases) {
        LasBuilder builder(14, 6);
        builder.Lie(94, c.size).Lie<std::uint64_t>(227, 7).Lie<std::uint64_t>(235, 8);
        const std::string bytes = builder.Lie<std::uint32_t>(243, 2).Lie<std::uint64_t>(247, 9).Build();
        EXPECT_EQ(HeaderOf(bytes).WaveformStart(), c.waveformStart) << c.size;
        EXPECT_EQ(HeaderOf(bytes).EvlrStart(), c.evlrStart) << c.size;
        EXPECT_EQ(HeaderOf(bytes).EvlrCount(), c.evlrCount) << c.size;
        EXPECT_EQ(HeaderOf(bytes).PointCount(), c.points) << c.size;
    }
}

TEST(LasFormat, KnowsEachPointFormat) {
    // Length; T time, C colour, N near infrared, W waveform.
    const std::pair<int, const char*> expected[] = {{20, ""},    {28, "T"},   {26, "C"},   {34, "TC"},
                                                    {57, "TW"},  {63, "TCW"}, {30, "T"},   {36, "TC"},
                                                    {38, "TCN"}, {59, "TW"},  {67, "TCNW"}};
    for (int format = 0; format <= las::kLastPointFormat; ++format) {
        const las::PointFormatFacts* facts = las::FindPointFormat(format);
        ASSERT_NE(facts, nullptr);
        const std::string letters = std::string(facts->hasGpsTime ? "T" : "") + (facts->hasColor ? "C" : "") +
                                    (facts->hasNearInfrared ? "N" : "") + (facts->hasWaveform ? "W" : "");
        EXPECT_EQ(facts->minimumLength, expected[format].first) << format;
        EXPECT_EQ(letters, expected[format].second) << format;
    }
    EXPECT_EQ(las::FindPointFormat(-1), nullptr);
    EXPECT_EQ(las::FindPointFormat(las::kLastPointFormat + 1), nullptr);
}

}  // namespace
}  // namespace orvex
