#include "raster/RasterColumns.h"

#include <gmock/gmock.h>

#include <cstdint>
#include <iterator>
#include <tuple>

#include "raster/testing/RasterRows.h"

namespace orvex {
namespace {

std::wstring Shown(const RasterRow& row, const char* column) {
    return CellText(ColumnNamed(RasterColumns(RasterUse::Image), column), row);
}

void ExpectCells(const RasterRow& row, std::initializer_list<std::pair<const char*, std::wstring>> cells) {
    for (const auto& [column, text] : cells) {
        EXPECT_EQ(Shown(row, column), text) << column;
    }
}

/// A projected image in the columns of the raster page.
constexpr struct {
    const char* name;
    const wchar_t* text;  ///< null: checked apart
} kColumns[] = {
    {"loadFlag", nullptr},
    {"path", L"/data/ortho.tif"},
    {"details", nullptr},
    {"fileName", L"ortho.tif"},
    {"folder", L"/data"},
    {"size", L"2.34"},
    {"modified", L"2024-05-17 09:30"},
    {"layer", L"Ortho"},
    {"summary", L"OK"},
    {"fileType", L"GeoTIFF"},
    {"bigTiff", L"False"},
    {"imageSize", L"600 x 400"},
    {"width", L"600"},
    {"height", L"400"},
    {"bands", L"3"},
    {"bitsPerBand", L"8"},
    {"colorModel", L"RGB"},
    {"photometric", L"RGB"},
    {"projectionCode", L"EPSG:25832"},
    {"overviews", L"2"},
    {"pixelSize", L"0.50000000"},
    {"pixelSizes", L"0.50000000 x 0.25000000"},
    {"minimumX", L"500000.000"},
    {"maximumX", L"500300.000"},
    {"minimumY", L"5700000.000"},
    {"maximumY", L"5700100.000"},
    {"crsName", L"ETRS89 / UTM zone 32N"},
    {"linearUnit", L"Meters"},
    {"angularUnit", L"degree"},
    {"wkt", nullptr},
    {"gpsTime", L"No GPS Time"},
};

TEST(RasterColumns, BothPagesHaveTheirColumnsInOrder) {
    const RasterRow ortho = testing::DescribedRaster(L"/data/ortho.tif", testing::ProjectedWkt(), L"Ortho");
    const auto columns = RasterColumns(RasterUse::Image);
    ASSERT_EQ(columns.size(), std::size(kColumns));
    for (std::size_t i = 0; i < columns.size(); ++i) {
        EXPECT_STREQ(columns[i].name, kColumns[i].name);
        if (kColumns[i].text != nullptr) {
            EXPECT_EQ(CellText(columns[i], ortho), kColumns[i].text) << columns[i].name;
        }
    }
    const auto dem = RasterColumns(RasterUse::Dem);
    EXPECT_EQ(dem.size(), std::size(kColumns) - 1);
    EXPECT_THROW(ColumnNamed(dem, "bigTiff"), std::logic_error);
    EXPECT_EQ(CellText(ColumnNamed(dem, "gpsTime"), ortho), L"Standard GPS Time");
    EXPECT_EQ(Shown(ortho, "details"), std::to_wstring(reinterpret_cast<std::uintptr_t>(ortho.file.get())));
    EXPECT_EQ(Shown(ortho, "wkt"), ortho.crs->prettyWkt);
    EXPECT_NE(ortho.crs->prettyWkt.find(L"\r\n"), std::wstring::npos);
}

TEST(RasterColumns, DegreesGapsAndRefusals) {
    RasterRow degrees = testing::DescribedRaster(L"/a.tif", testing::GeographicWkt());
    degrees.file->properties.extent = {{-7.5, 49.25, 8.123456789, 50}};
    RasterRow plain = testing::DescribedRaster(L"/plain.JPG", {});
    plain.file->properties.pixelWidth = plain.file->properties.pixelHeight = 0;
    plain.file->properties.extent.reset();
    plain.file->properties.format.clear();
    plain.file->bigTiff = true;
    plain.unit.clear();
    plain.fileSize = 0;
    plain.modifiedMs = 0;
    const RasterRow broken = testing::RefusedRaster(L"/x/broken.tif", L"It ends too early.");
    ExpectCells(degrees,
                {{"minimumX", L"-7.50000000"}, {"maximumX", L"8.12345679"}, {"minimumY", L"49.25000000"}});
    ExpectCells(plain, {{"fileType", L"JPG"}, {"bigTiff", L"True"}, {"imageSize", L"600 x 400"}});
    for (const char* unsaid : {"size", "modified", "pixelSize", "pixelSizes", "minimumX", "maximumY",
                               "crsName", "linearUnit", "wkt"}) {
        EXPECT_EQ(Shown(plain, unsaid), L"") << unsaid;
    }
    ExpectCells(broken, {{"summary", Text(text::kRasterCannotBeRead) + L" It ends too early."},
                         {"details", L"0"},
                         {"size", L"0.00"}});
    EXPECT_EQ(FindingsText(broken), broken.summary);
    EXPECT_EQ(ColumnNamed(RasterColumns(RasterUse::Image), "loadFlag").cell(broken), GridCell(0.0));
    for (const RasterUse use : {RasterUse::Image, RasterUse::Dem}) {
        for (const Column<RasterRow>& column : RasterColumns(use).subspan(9)) {
            EXPECT_EQ(CellText(column, broken), L"") << column.name;
        }
    }
}

TEST(RasterColumns, CodesAreNamed) {
    const RasterRow row = testing::DescribedRaster(L"/a.tif", {});
    RasterProperties& properties = row.file->properties;
    const std::tuple<std::int32_t, StringId, StringId, std::wstring> cases[] = {
        {-1, text::kUnknown, text::kUnknown, Text(text::kProjectionCodeNone)},
        {0, {13621}, {13624}, Text(text::kProjectionCodeNone)},
        {1, {13620}, {13622}, L"EPSG:1"},
        {2, {13619}, {13619}, L"EPSG:2"},
        {3, text::kUnknown, {13623}, L"EPSG:3"},
        {4, text::kUnknown, {13625}, L"EPSG:4"},
        {32767, text::kUnknown, text::kUnknown, Text(text::kProjectionCodeNone)}};
    for (const auto& [code, model, kind, projection] : cases) {
        properties.colorModel = properties.rasterKind = properties.projectionCode = code;
        EXPECT_EQ(Shown(row, "colorModel"), Text(model)) << code;
        EXPECT_EQ(Shown(row, "photometric"), Text(kind)) << code;
        EXPECT_EQ(Shown(row, "projectionCode"), projection) << code;
    }
}

}  // namespace
}  // namespace orvex
