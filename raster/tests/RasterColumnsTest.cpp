#include "raster/RasterColumns.h"

#include <gmock/gmock.h>

#include <cstdint>
#include <iterator>

#include "raster/testing/RasterRows.h"

namespace orvex {
namespace {

std::wstring Shown(const RasterRow& row, const char* column, RasterUse use = RasterUse::Image) {
    return CellText(ColumnNamed(RasterColumns(use), column), row);
}

/// A column of the raster page. Flags: [B]asic, [F]rozen, [H]idden, [N]umber, [I]con only, footer with
/// [C]ount or [S]um.
constexpr struct {
    const char* name;
    unsigned caption;
    int width;
    const char* flags;
} kColumns[] = {
    {"loadFlag", 0, 20, "BFI"},         {"path", 13502, 200, "H"},       {"details", 13567, 200, "H"},
    {"fileName", 13503, 200, "BFC"},    {"folder", 13504, 300, ""},      {"size", 13505, 200, "BNS"},
    {"modified", 13506, 300, ""},       {"layer", 13507, 200, "B"},      {"summary", 13508, 300, "B"},
    {"fileType", 13568, 200, ""},       {"bigTiff", 3325, 200, ""},      {"imageSize", 13569, 200, "B"},
    {"width", 13570, 200, "N"},         {"height", 13571, 200, "N"},     {"bands", 13572, 200, "N"},
    {"bitsPerBand", 13573, 200, "N"},   {"colorModel", 13574, 200, ""},  {"photometric", 13575, 200, ""},
    {"projectionCode", 13576, 300, ""}, {"overviews", 13577, 200, "N"},  {"pixelSize", 13645, 200, "BN"},
    {"pixelSizes", 13578, 200, ""},     {"minimumX", 13541, 200, "N"},   {"maximumX", 13542, 200, "N"},
    {"minimumY", 13538, 200, "N"},      {"maximumY", 13539, 200, "N"},   {"crsName", 13509, 200, "B"},
    {"linearUnit", 13579, 200, "B"},    {"angularUnit", 13580, 200, ""}, {"wkt", 13581, 200, ""},
    {"gpsTime", 13513, 200, ""},
};

std::string FlagsOf(const GridColumn& column) {
    const std::pair<bool, char> flags[] = {
        {column.basic, 'B'},
        {column.frozen, 'F'},
        {column.hidden, 'H'},
        {column.kind == CellKind::Number, 'N'},
        {column.kind == CellKind::Flag, 'I'},
        {column.footer == FooterKind::Count, 'C'},
        {column.footer == FooterKind::Sum, 'S'},
    };
    std::string text;
    for (const auto& [isSet, letter] : flags) {
        text += isSet ? std::string(1, letter) : std::string();
    }
    return text;
}

TEST(RasterColumns, BothPagesHaveTheirColumnsInOrder) {
    for (const RasterUse use : {RasterUse::Image, RasterUse::Dem}) {
        const auto columns = RasterColumns(use);
        ASSERT_EQ(columns.size(), use == RasterUse::Image ? 31U : 30U);
        auto column = columns.begin();
        for (const auto& expected : kColumns) {
            if (use == RasterUse::Dem && expected.name == std::string("bigTiff")) {
                continue;
            }
            EXPECT_STREQ(column->name, expected.name);
            EXPECT_EQ(column->caption.value, expected.caption) << expected.name;
            EXPECT_EQ(column->width, expected.width) << expected.name;
            EXPECT_EQ(FlagsOf(*column), expected.flags) << expected.name;
            ++column;
        }
    }
}

TEST(RasterColumns, CellsOfEachKindOfFile) {
    const RasterRow ortho = testing::DescribedRaster(L"/data/ortho.tif", testing::ProjectedWkt(), L"Ortho");
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
    const struct {
        const RasterRow& row;
        const char* column;
        std::wstring text;
    } cells[] = {
        {ortho, "path", L"/data/ortho.tif"},
        {ortho, "details", std::to_wstring(reinterpret_cast<std::uintptr_t>(ortho.file.get()))},
        {ortho, "fileName", L"ortho.tif"},
        {ortho, "folder", L"/data"},
        {ortho, "size", L"2.34"},
        {ortho, "modified", L"2024-05-17 09:30"},
        {ortho, "layer", L"Ortho"},
        {ortho, "summary", L"OK"},
        {ortho, "fileType", L"GeoTIFF"},
        {ortho, "bigTiff", L"False"},
        {ortho, "imageSize", L"600 x 400"},
        {ortho, "width", L"600"},
        {ortho, "height", L"400"},
        {ortho, "bands", L"3"},
        {ortho, "bitsPerBand", L"8"},
        {ortho, "colorModel", L"RGB"},
        {ortho, "photometric", L"RGB"},
        {ortho, "projectionCode", L"EPSG:25832"},
        {ortho, "overviews", L"2"},
        {ortho, "pixelSize", L"0.50000000"},
        {ortho, "pixelSizes", L"0.50000000 x 0.25000000"},
        {ortho, "minimumX", L"500000.000"},
        {ortho, "maximumX", L"500300.000"},
        {ortho, "minimumY", L"5700000.000"},
        {ortho, "maximumY", L"5700100.000"},
        {ortho, "crsName", L"ETRS89 / UTM zone 32N"},
        {ortho, "linearUnit", L"Meters"},
        {ortho, "angularUnit", L"degree"},
        {ortho, "wkt", ortho.crs->prettyWkt},
        {ortho, "gpsTime", L"No GPS Time"},
        // Degrees have eight decimals.
        {degrees, "minimumX", L"-7.50000000"},
        {degrees, "maximumX", L"8.12345679"},
        {degrees, "minimumY", L"49.25000000"},
        // Cells of what a file does not say are empty.
        {plain, "fileType", L"JPG"},
        {plain, "bigTiff", L"True"},
        {plain, "imageSize", L"600 x 400"},
        {plain, "size", L""},
        {plain, "modified", L""},
        {plain, "pixelSize", L""},
        {plain, "pixelSizes", L""},
        {plain, "minimumX", L""},
        {plain, "maximumY", L""},
        {plain, "crsName", L""},
        {plain, "linearUnit", L""},
        {plain, "wkt", L""},
        {broken, "summary", Text(text::kRasterCannotBeRead) + L" It ends too early."},
        {broken, "details", L"0"},
        {broken, "size", L"0.00"},
    };
    for (const auto& cell : cells) {
        EXPECT_EQ(Shown(cell.row, cell.column), cell.text) << cell.column;
    }
    EXPECT_NE(ortho.crs->prettyWkt.find(L"\r\n"), std::wstring::npos);
    EXPECT_EQ(Shown(ortho, "gpsTime", RasterUse::Dem), L"Standard GPS Time");
    EXPECT_EQ(FindingsText(broken), broken.summary);
    EXPECT_EQ(ColumnNamed(RasterColumns(RasterUse::Image), "loadFlag").cell(broken), GridCell(0.0));
    for (const RasterUse use : {RasterUse::Image, RasterUse::Dem}) {
        for (const Column<RasterRow>& column : RasterColumns(use).subspan(9)) {
            EXPECT_EQ(CellText(column, broken), L"") << column.name;
        }
    }
}

TEST(RasterColumns, CodesAreNamed) {
    const struct {
        std::int32_t code;
        unsigned colorModel;
        unsigned kind;
        const wchar_t* projection;
    } cases[] = {{-1, 13489, 13489, nullptr},    {0, 13621, 13624, nullptr},
                 {1, 13620, 13622, L"EPSG:1"},   {2, 13619, 13619, L"EPSG:2"},
                 {3, 13489, 13623, L"EPSG:3"},   {4, 13489, 13625, L"EPSG:4"},
                 {5, 13489, 13489, L"EPSG:5"},   {32766, 13489, 13489, L"EPSG:32766"},
                 {32767, 13489, 13489, nullptr}, {32768, 13489, 13489, L"EPSG:32768"}};
    for (const auto& c : cases) {
        const RasterRow row = testing::DescribedRaster(L"/a.tif", {});
        row.file->properties.colorModel = c.code;
        row.file->properties.rasterKind = c.code;
        row.file->properties.projectionCode = c.code;
        EXPECT_EQ(Shown(row, "colorModel"), Text({c.colorModel})) << c.code;
        EXPECT_EQ(Shown(row, "photometric"), Text({c.kind})) << c.code;
        EXPECT_EQ(Shown(row, "projectionCode"),
                  c.projection != nullptr ? c.projection : Text(text::kProjectionCodeNone))
            << c.code;
    }
}

}  // namespace
}  // namespace orvex
