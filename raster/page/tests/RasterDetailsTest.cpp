#include "raster/page/RasterDetails.h"

#include <gmock/gmock.h>

#include <limits>

#include "raster/page/RasterBandTable.h"
#include "raster/page/RasterTotals.h"
#include "raster/page/RasterValues.h"
#include "raster/testing/RasterListings.h"

namespace orvex {
namespace {

using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::SizeIs;

/// What a list of sections says under a caption; "-" when it says nothing.
std::wstring Value(const std::vector<DetailSection>& sections, StringId caption) {
    for (const DetailSection& section : sections) {
        for (const DetailField& field : section.fields) {
            if (field.caption == caption) {
                return field.value;
            }
        }
    }
    return L"-";
}

RasterBandProperties FloatBand(std::optional<double> nodata) {
    RasterBandProperties band;
    band.dataType = L"Float32";
    band.bits = 32;
    band.blockWidth = band.blockHeight = 256;
    band.colorInterpretation = L"Gray";
    band.nodata = nodata;
    return band;
}

RasterInspection Dem() {
    RasterInspection file = testing::DescribedRaster(L"/d/dem.tif", testing::ProjectedWkt());
    RasterProperties& properties = file.properties;
    properties.bands = 2;
    properties.bandDetails = {FloatBand(-9999), FloatBand(std::numeric_limits<double>::quiet_NaN())};
    properties.bandDetails[0].minimum = 12.5;
    properties.bandDetails[1].minimum = -3;
    properties.bandDetails[0].maximum = 1000000;
    properties.compression = L"DEFLATE";
    properties.pixelIs = L"Point";
    properties.transform = {{500000, 0.5, 0, 5700100, 0, -0.25}};
    properties.sidecars = {L"/d/dem.tfw", L"/d/dem.tif.aux.xml"};
    properties.totalBytes = 3'000'000;
    return file;
}

TEST(RasterDetails, TheOverviewTellsWhatLoadingTakes) {
    const auto sections = RasterOverview(testing::ListedRow(Dem(), L"DEM LAS Layer_1"), RasterUse::Dem);
    const std::pair<StringId, const wchar_t*> values[] = {
        {text::kFileType, L"GeoTIFF"},
        {text::kSizeMegabytes, L"2.34"},
        {text::kRasterTotalSizeMegabytes, L"3.00"},
        {text::kRasterOtherFiles, L"dem.tfw\ndem.tif.aux.xml"},
        {text::kLayerName, L"DEM LAS Layer_1"},
        {text::kGpsTimeType, L"Standard GPS Time"},
        {text::kImageSize, L"600 x 400"},
        {text::kRasterDataType, L"Float32"},
        {text::kRasterNoDataValue, L"-9999, NaN"},
        {text::kRasterMinimum, L"-3"},
        {text::kRasterMaximum, L"1e+06"},
        {text::kExtentX, L"500000.000 \u2013 500300.000"},
        {text::kPixelSizeXy, L"0.50000000 x 0.25000000"},
        {text::kUnits, L"Meters"},
        {text::kRasterUpperLeftCorner, L"-"},
        {text::kRasterRotation, L"None"},
        {text::kRasterPixelStandsFor, L"Its center point"},
        {text::kRasterCompression, L"DEFLATE"},
        {text::kRasterBlockSize, L"256 x 256"},
        {text::kBigTiff, L"False"},
        {text::kRasterUncompressedMegabytes, L"1.92"},
        {text::kRasterRpc, L"-"},
    };
    for (const auto& [caption, value] : values) {
        EXPECT_EQ(Value(sections, caption), value) << caption.value;
    }
}

TEST(RasterDetails, RotatedRowsAreToldInDegrees) {
    RasterInspection file = Dem();
    file.properties.transform = {{0, 0, -2, 0, 2, 0}};  // a quarter turn
    const auto sections = RasterOverview(testing::ListedRow(std::move(file)), RasterUse::Image);
    EXPECT_EQ(Value(sections, text::kRasterRotation), L"90.000000\u00b0");
    EXPECT_EQ(Value(sections, text::kRasterUpperLeftCorner), L"0.000 / 0.000");
    EXPECT_EQ(Value(sections, text::kGpsTimeType), L"-") << "an image has no GPS time";
}

TEST(RasterDetails, AnObjectThatKnowsLittleAndARefusedFileSayLittle) {
    RasterInspection file = testing::DescribedRaster(L"/a.tif", {});
    file.properties.hasDetails = false;
    const RasterRow row = testing::ListedRow(std::move(file));
    const auto sections = RasterOverview(row, RasterUse::Image);
    for (const StringId caption : {text::kRasterNoDataValue, text::kRasterCompression, text::kRasterRotation,
                                   text::kRasterUpperLeftCorner, text::kRasterDataType}) {
        EXPECT_EQ(Value(sections, caption), L"-") << caption.value;
    }
    EXPECT_THAT(RasterCrsFields(row), IsEmpty());
    EXPECT_THAT(RasterBands(row).rows, IsEmpty());
    EXPECT_THAT(RasterOverview(testing::ListedRow(testing::RefusedRaster(L"/b", L"no")), RasterUse::Image),
                IsEmpty());
}

TEST(RasterDetails, BandsLeaveOutWhatNoneSays) {
    RasterInspection file = Dem();
    file.properties.bandDetails[1].scale = 0.1F;
    file.properties.bands = 300;
    const RasterRow row = testing::ListedRow(std::move(file));
    const DetailTable table = RasterBands(row);
    EXPECT_THAT(table.captions, ElementsAre(text::kRasterBand, text::kRasterDataType, text::kBitsPerBand,
                                            text::kRasterBandColor, text::kRasterNoDataValue,
                                            text::kRasterMinimum, text::kRasterMaximum, text::kRasterScale,
                                            text::kRasterBlockSize, text::kOverviews));
    ASSERT_THAT(table.rows, SizeIs(2));
    EXPECT_THAT(table.rows[0], ElementsAre(L"1", L"Float32", L"32", L"Gray", L"-9999", L"12.5", L"1e+06", L"",
                                           L"256 x 256", L"0"));
    EXPECT_THAT(table.rows[1], Contains(L"0.1")) << "with the digits that single precision has";
    EXPECT_EQ(UnlistedBands(row), 298U);
}

TEST(RasterDetails, ManyDifferentValuesAreCut) {
    RasterProperties properties;
    for (int i = 0; i < 20; ++i) {
        properties.bandDetails.push_back(FloatBand(i));
    }
    EXPECT_EQ(DistinctNodata(properties), L"0, 1, 2, 3, 4, 5, 6, 7, ...");
    EXPECT_EQ(DistinctBlocks(properties), L"256 x 256");
    EXPECT_EQ(LowestMinimum(properties), L"");
}

TEST(RasterDetails, TotalsUniteExtentsOfOneCrsOnly) {
    std::vector<RasterRow> rows;
    rows.push_back(testing::ListedRow(Dem(), L"A"));
    RasterInspection east = Dem();
    east.properties.extent = {{500300, 5699000, 500900, 5700000}};
    rows.push_back(testing::ListedRow(std::move(east), L"A"));
    RasterInspection odd = Dem();
    odd.properties.extent = {{std::numeric_limits<double>::quiet_NaN(), 0, 1, 1}};
    rows.push_back(testing::ListedRow(std::move(odd), L"B"));
    rows.push_back(testing::ListedRow(testing::RefusedRaster(L"/c", L"no")));
    const std::vector<std::size_t> all{0, 1, 2, 3};
    const RasterTotals totals = RasterTotalsOf(rows, all);
    EXPECT_EQ(totals.files, 4U);
    EXPECT_EQ(totals.notReadable, 1U);
    EXPECT_EQ(totals.layers, 2U);
    EXPECT_EQ(totals.bytes, 3U * 2'340'000 + 10);
    EXPECT_EQ(totals.totalBytes, 9'000'010U);
    EXPECT_EQ(totals.pixels, 720000);
    ASSERT_TRUE(totals.extent.has_value());
    EXPECT_THAT(*totals.extent, ElementsAre(500000, 5699000, 500900, 5700100));
    EXPECT_EQ(Value({RasterTotalsSection(totals)}, text::kMinX), L"500000.000");

    rows.push_back(testing::ListedRow(testing::DescribedRaster(L"/e", testing::GeographicWkt()), L"C"));
    const std::vector<std::size_t> mixed{0, 4};
    EXPECT_FALSE(RasterTotalsOf(rows, mixed).extent.has_value());
    EXPECT_THAT(RasterTotalsOf(rows, mixed).crsNames, SizeIs(2));
}

}  // namespace
}  // namespace orvex
