#include "raster/RasterCells.h"

#include <gmock/gmock.h>

#include "raster/testing/RasterListings.h"

namespace orvex {
namespace {

using ::testing::HasSubstr;

std::wstring Shown(const RasterRow& row, RasterColumn column, RasterUse use = RasterUse::Image) {
    return RasterCellText(row, column, use);
}

/// Pairs of caption id and width, in the order of the raster page.
constexpr struct {
    StringId caption;
    int width;
} kTable[] = {{{}, 20},
              {text::kPath, 200},
              {text::kRasterDetailsColumn, 200},
              {text::kFileName, 200},
              {text::kFolder, 300},
              {text::kSizeMegabytes, 200},
              {text::kModified, 300},
              {text::kLayerName, 200},
              {text::kSummary, 300},
              {text::kFileType, 200},
              {text::kBigTiff, 200},
              {text::kImageSize, 200},
              {text::kWidthPixels, 200},
              {text::kHeightPixels, 200},
              {text::kBandCount, 200},
              {text::kBitsPerBand, 200},
              {text::kColorModel, 200},
              {text::kPhotometricInterpretation, 200},
              {text::kProjectionCode, 300},
              {text::kOverviews, 200},
              {text::kPixelSize, 200},
              {text::kPixelSizeXy, 200},
              {text::kMinX, 200},
              {text::kMaxX, 200},
              {text::kMinY, 200},
              {text::kMaxY, 200},
              {text::kCrsName, 200},
              {text::kLinearUnit, 200},
              {text::kAngularUnit, 200},
              {text::kCrsWkt, 200},
              {text::kGpsTimeType, 200}};

TEST(RasterColumnTable, BothGridsHaveTheirColumnsInOrder) {
    const auto raster = RasterColumns(RasterUse::Image);
    const auto dem = RasterColumns(RasterUse::Dem);
    ASSERT_EQ(raster.size(), std::size(kTable));
    ASSERT_EQ(raster.size(), 31U);
    ASSERT_EQ(dem.size(), 30U);
    std::size_t inDem = 0;
    for (std::size_t i = 0; i < raster.size(); ++i) {
        EXPECT_EQ(raster[i].caption, kTable[i].caption) << i;
        EXPECT_EQ(raster[i].width, kTable[i].width) << i;
        EXPECT_EQ(RasterColumnAt(RasterUse::Image, static_cast<int>(i)), static_cast<RasterColumn>(i));
        if (raster[i].caption != text::kBigTiff) {
            EXPECT_STREQ(dem[inDem].name, raster[i].name);
            EXPECT_EQ(RasterColumnAt(RasterUse::Dem, static_cast<int>(inDem)), static_cast<RasterColumn>(i));
            ++inDem;
        }
    }
    EXPECT_EQ(inDem, dem.size());
    EXPECT_EQ(raster[0].tooltip, text::kStatusIconTooltip);
    EXPECT_TRUE(raster[1].hidden && raster[2].hidden);
}

TEST(RasterCellTexts, AProjectedImageFillsEveryColumn) {
    const RasterRow row =
        testing::ListedRow(testing::DescribedRaster(L"/data/ortho.tif", testing::ProjectedWkt()), L"Ortho");
    const std::pair<RasterColumn, const wchar_t*> cells[] = {
        {RasterColumn::Path, L"/data/ortho.tif"},
        {RasterColumn::FileName, L"ortho.tif"},
        {RasterColumn::Folder, L"/data"},
        {RasterColumn::Size, L"2.34"},
        {RasterColumn::Modified, L"2024-05-17 09:30"},
        {RasterColumn::Layer, L"Ortho"},
        {RasterColumn::Summary, L"OK"},
        {RasterColumn::FileType, L"GeoTIFF"},
        {RasterColumn::BigTiff, L"False"},
        {RasterColumn::ImageSize, L"600 x 400"},
        {RasterColumn::Width, L"600"},
        {RasterColumn::Height, L"400"},
        {RasterColumn::Bands, L"3"},
        {RasterColumn::BitsPerBand, L"8"},
        {RasterColumn::ColorModel, L"RGB"},
        {RasterColumn::Photometric, L"RGB"},
        {RasterColumn::ProjectionCode, L"EPSG:25832"},
        {RasterColumn::Overviews, L"2"},
        {RasterColumn::PixelSize, L"0.50000000"},
        {RasterColumn::PixelSizes, L"0.50000000 x 0.25000000"},
        {RasterColumn::MinimumX, L"500000.000"},
        {RasterColumn::MaximumX, L"500300.000"},
        {RasterColumn::MinimumY, L"5700000.000"},
        {RasterColumn::MaximumY, L"5700100.000"},
        {RasterColumn::CrsName, L"ETRS89 / UTM zone 32N"},
        {RasterColumn::LinearUnit, L"Meters"},
        {RasterColumn::AngularUnit, L"degree"},
        {RasterColumn::GpsTime, L"No GPS Time"},
    };
    for (const auto& [column, text] : cells) {
        EXPECT_EQ(Shown(row, column), text) << IndexOf(column);
    }
    EXPECT_EQ(Shown(row, RasterColumn::Details),
              std::to_wstring(reinterpret_cast<std::uintptr_t>(row.inspection.details.get())));
    EXPECT_THAT(ToUtf8(Shown(row, RasterColumn::Wkt)), HasSubstr("\r\n"));
    EXPECT_EQ(Shown(row, RasterColumn::GpsTime, RasterUse::Dem), L"Standard GPS Time");
}

TEST(RasterCellTexts, DegreesHaveEightDecimals) {
    RasterInspection file = testing::DescribedRaster(L"/a.tif", testing::GeographicWkt());
    file.properties.extent = {{-7.5, 49.25, 8.123456789, 50}};
    const RasterRow row = testing::ListedRow(std::move(file));
    EXPECT_EQ(Shown(row, RasterColumn::MinimumX), L"-7.50000000");
    EXPECT_EQ(Shown(row, RasterColumn::MaximumX), L"8.12345679");
    EXPECT_EQ(Shown(row, RasterColumn::MinimumY), L"49.25000000");
}

TEST(RasterCellTexts, CodesAreNamed) {
    const struct {
        std::int32_t code;
        StringId colorModel;
        StringId kind;
        const wchar_t* projection;
    } cases[] = {{-1, text::kUnknown, text::kUnknown, nullptr},
                 {0, text::kColorBlackAndWhite, text::kPhotometricWhiteIsZero, nullptr},
                 {1, text::kColorGrayscale, text::kPhotometricBlackIsZero, L"EPSG:1"},
                 {2, text::kColorRgb, text::kColorRgb, L"EPSG:2"},
                 {3, text::kUnknown, text::kPhotometricPalette, L"EPSG:3"},
                 {4, text::kUnknown, text::kPhotometricTransparencyMask, L"EPSG:4"},
                 {5, text::kUnknown, text::kUnknown, L"EPSG:5"},
                 {32766, text::kUnknown, text::kUnknown, L"EPSG:32766"},
                 {32767, text::kUnknown, text::kUnknown, nullptr},
                 {32768, text::kUnknown, text::kUnknown, L"EPSG:32768"}};
    for (const auto& c : cases) {
        RasterInspection file = testing::DescribedRaster(L"/a.tif", {});
        file.properties.colorModel = c.code;
        file.properties.rasterKind = c.code;
        file.properties.projectionCode = c.code;
        const RasterRow row = testing::ListedRow(std::move(file));
        EXPECT_EQ(Shown(row, RasterColumn::ColorModel), Text(c.colorModel)) << c.code;
        EXPECT_EQ(Shown(row, RasterColumn::Photometric), Text(c.kind)) << c.code;
        EXPECT_EQ(Shown(row, RasterColumn::ProjectionCode),
                  c.projection != nullptr ? c.projection : Text(text::kProjectionCodeNone))
            << c.code;
    }
}

TEST(RasterCellTexts, WhatAFileDoesNotSayIsEmpty) {
    RasterInspection file = testing::DescribedRaster(L"/plain.JPG", {});
    file.properties.pixelWidth = file.properties.pixelHeight = 0;
    file.properties.extent.reset();
    file.properties.format.clear();
    file.unit.clear();
    file.fileSize = 0;
    file.modifiedMs = 0;
    const RasterRow row = testing::ListedRow(std::move(file));
    EXPECT_EQ(Shown(row, RasterColumn::FileType), L"JPG");
    for (const RasterColumn column :
         {RasterColumn::Size, RasterColumn::Modified, RasterColumn::PixelSize, RasterColumn::PixelSizes,
          RasterColumn::MinimumX, RasterColumn::MaximumY, RasterColumn::CrsName, RasterColumn::LinearUnit,
          RasterColumn::Wkt}) {
        EXPECT_EQ(Shown(row, column), L"") << IndexOf(column);
    }
    EXPECT_EQ(Shown(row, RasterColumn::ImageSize), L"600 x 400");
}

TEST(RasterCellTexts, AFileThatCouldNotBeDescribedSaysWhyAndNothingElse) {
    const RasterRow row = testing::ListedRow(testing::RefusedRaster(L"/x/broken.tif", L"It ends too early."));
    EXPECT_EQ(Shown(row, RasterColumn::Summary), Text(text::kRasterCannotBeRead) + L" It ends too early.");
    EXPECT_EQ(FindingsText(row), Shown(row, RasterColumn::Summary));
    EXPECT_EQ(RasterCell(row, RasterColumn::LoadFlag, RasterUse::Image), GridCell(0.0));
    EXPECT_EQ(Shown(row, RasterColumn::Details), L"0");
    EXPECT_EQ(Shown(row, RasterColumn::Size), L"0.00");
    for (int column = IndexOf(RasterColumn::FileType); column < kRasterColumnCount; ++column) {
        for (const RasterUse use : {RasterUse::Image, RasterUse::Dem}) {
            EXPECT_EQ(Shown(row, static_cast<RasterColumn>(column), use), L"") << column;
        }
    }
}

}  // namespace
}  // namespace orvex
