// The parts of the conversion that need no file.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <vector>

#include "host/dem/DemCrs.h"
#include "host/dem/DemEncoder.h"
#include "host/dem/DemRaster.h"
#include "host/dem/LasWriter.h"
#include "support/testing/Bytes.h"

namespace orvex {
namespace {

using testing::At;
using testing::Bytes;

TEST(RasterWindows, CoverEachPixelOnceInBoundedParts) {
    const struct {
        RasterWindows::Size raster, block;
    } cases[] = {
        {{7, 5}, {7, 1}},     {{7, 5}, {3, 2}},     {{1, 1}, {256, 256}},  {{100, 3}, {100, 3}},
        {{100, 90}, {1, 90}}, {{3, 200}, {3, 200}}, {{200, 3}, {200, 1}},  {{64, 64}, {16, 16}},
        {{65, 67}, {16, 16}}, {{5, 5}, {0, -3}},    {{90, 80}, {90, 500}}, {{500, 2}, {7, 1}},
    };
    for (const auto& c : cases) {
        for (const int most : {1, 10, 64, 300, 100000}) {
            SCOPED_TRACE(std::to_string(c.raster.width) + "x" + std::to_string(c.raster.height) + " in " +
                         std::to_string(c.block.width) + "x" + std::to_string(c.block.height) + " by " +
                         std::to_string(most));
            std::vector<int> seen(static_cast<std::size_t>(c.raster.width * c.raster.height));
            RasterWindows windows(c.raster, c.block, most);
            bool isEnd = false;
            while (const auto window = windows.Next()) {
                ASSERT_GT(window->Pixels(), 0U);
                ASSERT_LE(window->Pixels(), static_cast<std::uint64_t>(most));
                ASSERT_LE(window->x + window->width, c.raster.width);
                ASSERT_LE(window->y + window->height, c.raster.height);
                for (int y = window->y; y < window->y + window->height; ++y) {
                    for (int x = window->x; x < window->x + window->width; ++x) {
                        ++seen[static_cast<std::size_t>(y) * static_cast<std::size_t>(c.raster.width) +
                               static_cast<std::size_t>(x)];
                    }
                }
                isEnd = window->endsBlocks;
            }
            EXPECT_TRUE(isEnd);
            EXPECT_TRUE(std::ranges::all_of(seen, [](int times) { return times == 1; }));
        }
    }
}

TEST(RasterWindows, ReadWholeBlocksWhereTheyFit) {
    RasterWindows tiles({1000, 1000}, {100, 100}, 35000);
    const auto first = tiles.Next();
    ASSERT_TRUE(first);
    EXPECT_EQ(first->width, 300);
    EXPECT_EQ(first->height, 100);
    EXPECT_TRUE(first->endsBlocks);
    RasterWindows strip({2000000000, 2000000000}, {2000000000, 2000000000}, 1000);
    const auto part = strip.Next();
    ASSERT_TRUE(part);
    EXPECT_EQ(part->width, 1000);
    EXPECT_FALSE(part->endsBlocks);
}

TEST(ThinningLattice, KeepsOneOfNAndTheyLieApart) {
    for (const int n : {1, 2, 3, 4, 5, 7, 9, 16, 25, 64, 100, 255, 256}) {
        SCOPED_TRACE(n);
        const ThinningLattice lattice(static_cast<unsigned>(n));
        const int side = 2 * n;
        std::vector<std::pair<int, int>> kept;
        for (int row = 0; row < side; ++row) {
            for (std::int64_t column = lattice.FirstColumn(row, 0); column < side; column += lattice.Step()) {
                kept.emplace_back(static_cast<int>(column), row);
            }
        }
        // A part that begins anywhere finds the same pixels.
        EXPECT_EQ(lattice.FirstColumn(1, 1 + lattice.FirstColumn(1, 0)), lattice.FirstColumn(1, 0) + n);
        ASSERT_EQ(kept.size(), static_cast<std::size_t>(4 * n));
        EXPECT_GE(kept.size(), lattice.LeastOf(static_cast<std::uint64_t>(side),
                                               std::uint64_t{2} * static_cast<unsigned>(n)));
        double nearest = 1e9;
        for (std::size_t i = 1; i < kept.size(); ++i) {
            nearest =
                std::min(nearest, std::hypot(kept[i].first - kept[0].first, kept[i].second - kept[0].second));
        }
        // The best there is are equilateral triangles: 1.07 times the square root of n.
        EXPECT_GE(nearest, 0.8 * std::sqrt(n));
    }
}

TEST(AxisScale, HoldsTheWholeExtent) {
    const struct {
        double low, high;
        int exponent;
        double scale;
    } cases[] = {
        {500000, 510000, -3, 0.001},  {-180, 180, -8, 1e-7},    {6, 7, -8, 1e-8},
        {0, 4e6, -3, 0.001},          {0, 4.3e6, -3, 0.01},     {-2.1e6, 2.1e6, -3, 0.001},
        {5e15, 5e15 + 10, -3, 0.001}, {3, 3, -3, 0.001},        {-1e30, 1e30, -3, 1e21},
        {0, 1e-9, -12, 1e-12},        {-20000001, 1, -3, 0.01},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.high);
        const AxisScale axis = FitAxis(c.low, c.high, c.exponent);
        EXPECT_DOUBLE_EQ(axis.scale, c.scale);
        EXPECT_LE((c.high - axis.offset) / axis.scale, kMostAxisSteps);
        EXPECT_GE((c.low - axis.offset) / axis.scale, -kMostAxisSteps);
    }
    EXPECT_EQ(FitAxis(512345.678, 519876.543, -3), (AxisScale{0.001, 516000}));
    EXPECT_EQ(FitAxis(-3, 3, -3), (AxisScale{0.001, 0}));
}

TEST(LasHeaderWriter, CountsByTheRulesOfTheVersion) {
    const struct {
        int minor, format;
        std::uint64_t points;
        std::uint32_t legacy;
    } cases[] = {
        {2, 1, 4294967295, 4294967295},
        {4, 3, 4294967295, 4294967295},
        {4, 3, 4294967296, 0},
        {4, 6, 7, 0},
    };
    for (const auto& c : cases) {
        LasHeaderFields fields;
        fields.minorVersion = c.minor;
        fields.pointFormat = c.format;
        fields.points = c.points;
        const std::string header = LasHeaderBytes(fields);
        ASSERT_EQ(header.size(), LasHeaderSize(c.minor));
        EXPECT_EQ(At<std::uint32_t>(header, 107), c.legacy);
        EXPECT_EQ(At<std::uint32_t>(header, 111), c.legacy);
        if (c.minor == 4) {
            EXPECT_EQ(At<std::uint64_t>(header, 247), c.points);
            EXPECT_EQ(At<std::uint64_t>(header, 255), c.points);
        }
    }
}

TEST(LasHeaderWriter, Las10MarksRecordsAndPoints) {
    EXPECT_EQ(At<std::uint16_t>(LasRecordBytes(0, "user", 7, "text", "data"), 0), 0xAABB);
    EXPECT_EQ(LasPointsMark(0), "\xCC\xDD");
    const std::string record = LasRecordBytes(1, "a user id that is too long", 7, "text", "data");
    EXPECT_EQ(At<std::uint16_t>(record, 0), 0);
    EXPECT_EQ(record.substr(2, 16), "a user id that i");
    EXPECT_EQ(At<std::uint16_t>(record, 18), 7);
    EXPECT_EQ(At<std::uint16_t>(record, 20), 4);
    EXPECT_EQ(record.substr(54), "data");
    EXPECT_EQ(LasPointsMark(1), "");
}

TEST(TiffTags, AreReadOnlyWhereTheyLieInside) {
    const auto tiff = [](std::uint32_t place, std::uint32_t count, std::uint16_t type) {
        return std::string("II*\0", 4) +
               Bytes(std::uint32_t{8}, std::uint16_t{1}, std::uint16_t{34735}, type) +
               Bytes(count, place, std::uint32_t{0}) + "abcdefgh";
    };
    const auto find = [](const std::string& bytes, std::uint16_t tag = 34735) {
        return FindTiffTag(std::as_bytes(std::span(bytes)), tag);
    };
    EXPECT_EQ(find(tiff(26, 4, 3)), "abcdefgh");
    EXPECT_EQ(find(tiff(26, 1, 12)), "abcdefgh");
    EXPECT_EQ(find(tiff(0x64636261, 2, 3)), "abcd") << "short values stand in the entry";
    EXPECT_EQ(find(tiff(26, 5, 3)), std::nullopt) << "runs past the end";
    EXPECT_EQ(find(tiff(26, 0xFFFFFFFF, 12)), std::nullopt);
    EXPECT_EQ(find(tiff(0xFFFFFFFF, 4, 3)), std::nullopt);
    EXPECT_EQ(find(tiff(26, 8, 99)), std::nullopt) << "unknown type";
    EXPECT_EQ(find(tiff(26, 4, 3), 34736), std::nullopt);
    EXPECT_EQ(find("MM"), std::nullopt);
    EXPECT_EQ(find(tiff(26, 4, 3).substr(0, 15)), std::nullopt);
}

}  // namespace
}  // namespace orvex
