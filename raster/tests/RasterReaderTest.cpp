#include "raster/RasterReader.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <ogr_spatialref.h>

#include <tuple>

#include "raster/testing/GeoTiff.h"
#include "support/Files.h"
#include "support/Format.h"
#include "support/Text.h"

namespace orvex {
namespace {

using ::testing::ElementsAre;
using testing::GeoTiff;
using ::testing::IsEmpty;
using testing::TemporaryFolder;

/// Reads the file as it is written; the folder goes with it.
RasterProperties Read(const GeoTiff& tiff) {
    const TemporaryFolder folder;
    return ReadRasterProperties(tiff.Write(folder, L"a.tif"));
}

/// A file that states everything a file can state.
GeoTiff CompleteTiff() {
    GeoTiff tiff;
    tiff.bands = 3;
    tiff.type = GDT_UInt16;
    tiff.options = {"COMPRESS=DEFLATE", "INTERLEAVE=BAND", "TILED=YES",
                    "BLOCKXSIZE=32",    "BLOCKYSIZE=16",   "PHOTOMETRIC=RGB"};
    tiff.change = [](GDALDatasetH dataset) {
        GDALSetMetadataItem(dataset, "AREA_OR_POINT", "Point", nullptr);
        GDALSetMetadataItem(dataset, "TIFFTAG_DATETIME", "2024:05:06 07:08:09", nullptr);
        GDALRasterBandH band = GDALGetRasterBand(dataset, 2);
        GDALSetRasterNoDataValue(band, 65535);
        GDALSetRasterScale(band, 0.25);
        GDALSetRasterOffset(band, -100);
        GDALSetRasterUnitType(band, "m");
        GDALSetDescription(band, "gr\xc3\xbcn");
        GDALSetMetadataItem(band, "STATISTICS_MINIMUM", "3", nullptr);
        GDALSetMetadataItem(band, "STATISTICS_MAXIMUM", "4000.5", nullptr);
        int levels[] = {2, 4};
        EXPECT_EQ(GDALBuildOverviews(dataset, "NEAREST", 2, levels, 0, nullptr, nullptr, nullptr), CE_None);
    };
    return tiff;
}

TEST(RasterReader, EveryFactOfAFileAndABand) {
    const TemporaryFolder folder;
    const GeoTiff tiff = CompleteTiff();
    const std::wstring path = tiff.Write(folder, L"Gel\u00e4nde \u4e2d.tif");
    const RasterProperties p = ReadRasterProperties(path);
    EXPECT_EQ(std::tuple(p.width, p.height, p.pixelWidth, p.pixelHeight), std::tuple(20, 10, 0.5, 0.5));
    EXPECT_EQ(std::tuple(p.linearUnit, p.projectionCode), std::tuple(L"metre", 32633));
    EXPECT_TRUE(p.wkt->starts_with("PROJCS[\"WGS 84 / UTM zone 33N\"")) << *p.wkt;
    EXPECT_EQ(std::tuple(p.colorModel, p.rasterKind), std::tuple(2, 2));
    EXPECT_EQ(std::tuple(p.bands, p.bitsPerBand, p.overviews), std::tuple(3, 16, 2));
    ASSERT_TRUE(p.extent);
    EXPECT_THAT(*p.extent, ElementsAre(500000, 5299995, 500010, 5300000));
    EXPECT_TRUE(p.hasDetails);
    EXPECT_EQ(std::tuple(p.driver, p.format), std::tuple(L"GTiff", L"GeoTIFF"));
    EXPECT_EQ(std::tuple(p.compression, p.interleave), std::tuple(L"DEFLATE", L"BAND"));
    EXPECT_EQ(std::tuple(p.pixelIs, p.acquired), std::tuple(L"Point", L"2024:05:06 07:08:09"));
    EXPECT_EQ(p.transform, tiff.transform);
    EXPECT_EQ(std::tuple(p.controlPoints, p.hasRpc), std::tuple(0, false));
    EXPECT_THAT(p.sidecars, IsEmpty());
    EXPECT_EQ(p.totalBytes, FileSizeOf(path));
    EXPECT_THAT(p.warnings, IsEmpty());
    EXPECT_EQ(folder.Entries(), 1U) << "nothing was written beside it";

    ASSERT_EQ(p.bandDetails->size(), 3U);
    const RasterBandProperties& band = (*p.bandDetails)[1];
    EXPECT_EQ(std::tuple(band.dataType, band.bits), std::tuple(L"UInt16", 16));
    EXPECT_EQ(std::tuple(band.blockWidth, band.blockHeight), std::tuple(32, 16));
    EXPECT_EQ(std::tuple(band.nodata, band.minimum, band.maximum), std::tuple(65535, 3, 4000.5));
    EXPECT_EQ(std::tuple(band.colorInterpretation, band.overviews), std::tuple(L"Green", 2));
    EXPECT_EQ(std::tuple(band.description, band.unit), std::tuple(L"gr\u00fcn", L"m"));
    EXPECT_EQ(std::tuple(band.scale, band.offset), std::tuple(0.25, -100));
    EXPECT_EQ((*p.bandDetails)[0].minimum, std::nullopt) << "the limit of the data type is no minimum";
}

TEST(RasterReader, CodeAndUnitOfTheCrs) {
    const struct {
        const char* crs;
        std::int32_t code;
        const wchar_t* unit;
    } cases[] = {
        {"", 0, L""},
        {"EPSG:2263", 2263, L"US survey foot"},
        {"EPSG:4326", 4326, L"unknown"},
        {"EPSG:32633+6360", 32633, L"metre"},  // heights in feet do not count
        {"+proj=tmerc +lon_0=15.5 +datum=WGS84 +units=m", 32767, L"metre"},
    };
    for (const auto& c : cases) {
        GeoTiff tiff;
        tiff.crs = c.crs;
        const RasterProperties p = Read(tiff);
        EXPECT_EQ(p.projectionCode, c.code) << c.crs;
        EXPECT_EQ(p.linearUnit, c.unit) << c.crs;
    }
}

/// Control points in the CRS of GeoTiff, and no transform.
void SetControlPoints(GDALDatasetH dataset) {
    OGRSpatialReference crs;
    crs.importFromEPSG(32633);
    char id[] = "";
    const GDAL_GCP point{id, id, 1, 2, 500000, 5300000, 0};
    EXPECT_EQ(GDALSetGCPs2(dataset, 1, &point, OGRSpatialReference::ToHandle(&crs)), CE_None);
}

// What the keys of a GeoTIFF file say is worked out once for all files with the same keys.
TEST(RasterReader, FilesWithEqualKeysKeepWhatElseTheySay) {
    const auto unit = [](GDALDatasetH dataset) {
        GDALSetRasterUnitType(GDALGetRasterBand(dataset, 1), "fathom");
    };
    const GeoTiff points{.transform = std::nullopt, .change = SetControlPoints};
    constexpr const char* kOtherCrs = "<PAMDataset><SRS>EPSG:25832</SRS></PAMDataset>";
    const struct {
        const wchar_t* name;
        GeoTiff tiff;
        const char* beside;
        std::int32_t code;
        const wchar_t* unit;
        const wchar_t* pixelIs;
    } files[] = {{L"first.tif", {}, nullptr, 32633, L"", L"Area"},
                 {L"second.tif", {}, nullptr, 32633, L"", L"Area"},
                 {L"unit.tif", {.change = unit}, nullptr, 32633, L"fathom", L"Area"},
                 {L"beside.tif", {}, kOtherCrs, 25832, L"", L""},
                 {L"points.tif", points, nullptr, 0, L"", L"Area"},
                 {L"big.tif", {.options = {"BIGTIFF=YES", "ENDIANNESS=BIG"}}, nullptr, 32633, L"", L"Area"},
                 {L"heights.tif", {.crs = "EPSG:32633+5773"}, nullptr, 32633, L"metre", L"Area"},
                 {L"more heights.tif", {.crs = "EPSG:32633+5773"}, nullptr, 32633, L"metre", L"Area"},
                 {L"third.tif", {}, nullptr, 32633, L"", L"Area"}};
    const TemporaryFolder folder;
    for (const auto& file : files) {
        const std::wstring path = file.tiff.Write(folder, file.name);
        if (file.beside != nullptr) {
            folder.Write(std::wstring(file.name) + L".aux.xml", file.beside);
        }
        const RasterProperties p = ReadRasterProperties(path);
        EXPECT_EQ(p.projectionCode, file.code) << ToUtf8(file.name);
        EXPECT_EQ(p.bandDetails->front().unit, file.unit) << ToUtf8(file.name);
        EXPECT_EQ(p.pixelIs, file.pixelIs) << ToUtf8(file.name);
    }
}

TEST(RasterReader, ColorsAsTheFileMeansThem) {
    const auto addPalette = [](GDALDatasetH dataset) {
        GDALColorTableH colors = GDALCreateColorTable(GPI_RGB);
        const GDALColorEntry red{255, 0, 0, 255};
        GDALSetColorEntry(colors, 0, &red);
        GDALSetRasterColorTable(GDALGetRasterBand(dataset, 1), colors);
        GDALDestroyColorTable(colors);
    };
    const struct {
        const char* about;
        int bands;
        std::vector<std::string> options;
        std::function<void(GDALDatasetH)> change;
        std::int32_t model;
        std::int32_t kind;
        std::int32_t bits;
    } cases[] = {
        {"bilevel", 1, {"NBITS=1"}, {}, 0, 1, 1},
        {"bilevel, white first", 1, {"NBITS=1", "PHOTOMETRIC=MINISWHITE"}, {}, 0, 0, 1},
        {"gray", 1, {}, {}, 1, 1, 8},
        {"gray, white first", 1, {"PHOTOMETRIC=MINISWHITE"}, {}, 1, 0, 8},
        {"palette", 1, {}, addPalette, 2, 3, 8},
        {"RGB", 3, {"PHOTOMETRIC=RGB"}, {}, 2, 2, 8},
        {"RGB and alpha", 4, {"PHOTOMETRIC=RGB", "ALPHA=YES"}, {}, 2, 2, 8},
        {"CMYK", 4, {"PHOTOMETRIC=CMYK"}, {}, 2, 2, 8},  // shown as RGB by the reader
    };
    for (const auto& c : cases) {
        GeoTiff tiff;
        tiff.bands = c.bands;
        tiff.options = c.options;
        tiff.change = c.change;
        const RasterProperties p = Read(tiff);
        EXPECT_EQ(std::tuple(p.colorModel, p.rasterKind, p.bitsPerBand), std::tuple(c.model, c.kind, c.bits))
            << c.about;
    }
}

TEST(RasterReader, PixelsOfARotatedImageAreMeasuredAlongItsSides) {
    GeoTiff tiff;
    tiff.transform = {{100, 3, 4, 200, 4, -3}};
    const RasterProperties p = Read(tiff);
    EXPECT_EQ(std::tuple(p.pixelWidth, p.pixelHeight), std::tuple(5, 5));
    ASSERT_TRUE(p.extent);
    EXPECT_THAT(*p.extent, ElementsAre(100, 170, 200, 280));
}

TEST(RasterReader, TruncatedOverviewsAreReportedInsideTheFileOnly) {
    const TemporaryFolder folder;
    const auto addOverview = [](GDALDatasetH dataset) {
        int level = 2;
        EXPECT_EQ(GDALBuildOverviews(dataset, "NEAREST", 1, &level, 0, nullptr, nullptr, nullptr), CE_None);
    };
    GeoTiff raster;
    raster.width = raster.height = 200;
    raster.options = {"COMPRESS=DEFLATE"};  // much shorter than the overview beside it
    const std::wstring beside = raster.Write(folder, L"beside.tif");
    addOverview(GdalDataset(GDALOpen(ToUtf8(beside).c_str(), GA_ReadOnly)).get());
    raster.options.clear();
    raster.change = addOverview;
    const std::wstring inside = raster.Write(folder, L"inside.tif");
    EXPECT_THAT(ReadRasterProperties(inside).warnings, IsEmpty());
    const std::string bytes = testing::ReadFile(inside);
    folder.Write(L"inside.tif", bytes.substr(0, bytes.size() - 100));

    EXPECT_LT(FileSizeOf(beside), FileSizeOf(beside + L".ovr"));
    EXPECT_EQ(ReadRasterProperties(beside).overviews, 1);
    EXPECT_THAT(ReadRasterProperties(beside).warnings, IsEmpty());
    ASSERT_FALSE(ReadRasterProperties(inside).warnings.empty());
    EXPECT_EQ(ReadRasterProperties(inside).warnings.front(),
              FormatText(Text(text::kRasterTruncatedAt), {bytes.size(), bytes.size() - 100}));
}

}  // namespace
}  // namespace orvex
