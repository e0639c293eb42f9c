// The parts of the conversion that need no file.
#include <gtest/gtest.h>

#include <algorithm>
#include <vector>

#include "host/dem/DemCrs.h"
#include "host/dem/DemRaster.h"
#include "host/dem/HostGdal.h"
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

TEST(LasHeaderWriter, CountsBeyond32BitsAreInTheirNewPlaceOnly) {
    LasHeaderFields fields;
    fields.minorVersion = 4;
    fields.pointFormat = 3;
    for (const std::uint64_t points : {std::uint64_t{4294967295}, std::uint64_t{4294967296}}) {
        fields.points = points;
        const std::string header = LasHeaderBytes(fields);
        const std::uint32_t legacy = points > 4294967295 ? 0 : 4294967295;
        EXPECT_EQ(At<std::uint32_t>(header, 107), legacy);
        EXPECT_EQ(At<std::uint32_t>(header, 111), legacy);
        EXPECT_EQ(At<std::uint64_t>(header, 247), points);
        EXPECT_EQ(At<std::uint64_t>(header, 255), points);
    }
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

// Rasters such as those of the USGS state a CRS by its numbers alone.
TEST(DemCrsRecords, KeysAreWrittenForACrsWithoutAName) {
    SetUpGdal();
    const struct {
        const char* crs;
        bool fitsGeoKeys;
    } cases[] = {{"+proj=utm +zone=11 +datum=NAD27", true},
                 {"+proj=laea +lat_0=40 +lon_0=10 +R=6371000", true},
                 {"+proj=utm +zone=11 +datum=NAD27 +vunits=us-ft", false},
                 {"+proj=ob_tran +o_proj=longlat +o_lon_p=0 +o_lat_p=30 +lon_0=10", false}};
    for (const auto& c : cases) {
        SCOPED_TRACE(c.crs);
        OGRSpatialReference crs;
        ASSERT_EQ(crs.SetFromUserInput(c.crs), OGRERR_NONE);
        const DemCrsRecords result = MakeCrsRecords(crs, 2, 1, L"a.dem");
        EXPECT_EQ(!result.records.empty(), c.fitsGeoKeys);
        EXPECT_EQ(result.warnings.empty(), c.fitsGeoKeys);
    }
}

}  // namespace
}  // namespace orvex
