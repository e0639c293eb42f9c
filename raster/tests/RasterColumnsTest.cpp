#include "raster/RasterColumns.h"

#include <gmock/gmock.h>

#include <cstdint>
#include <iterator>

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

/// A column of the raster page. Flags: [B]asic, [F]rozen, [H]idden, [N]umber, [I]con only, footer with
/// [C]ount or [S]um.
constexpr struct {
    const char* name;
    unsigned caption;
    int width;
    const char* flags;
    const wchar_t* text;  ///< of a projected image; null: checked apart
} kColumns[] = {
    {"loadFlag", 0, 20, "BFI", nullptr},
    {"path", 13502, 200, "H", L"/data/ortho.tif"},
    {"details", 13567, 200, "H", nullptr},
    {"fileName", 13503, 200, "BFC", L"ortho.tif"},
    {"folder", 13504, 300, "", L"/data"},
    {"size", 13505, 200, "BNS", L"2.34"},
    {"modified", 13506, 300, "", L"2024-05-17 09:30"},
    {"layer", 13507, 200, "B", L"Ortho"},
    {"summary", 13508, 300, "B", L"OK"},
    {"fileType", 13568, 200, "", L"GeoTIFF"},
    {"bigTiff", 3325, 200, "", L"False"},
    {"imageSize", 13569, 200, "B", L"600 x 400"},
    {"width", 13570, 200, "N", L"600"},
    {"height", 13571, 200, "N", L"400"},
    {"bands", 13572, 200, "N", L"3"},
    {"bitsPerBand", 13573, 200, "N", L"8"},
    {"colorModel", 13574, 200, "", L"RGB"},
    {"photometric", 13575, 200, "", L"RGB"},
    {"projectionCode", 13576, 300, "", L"EPSG:25832"},
    {"overviews", 13577, 200, "N", L"2"},
    {"pixelSize", 13645, 200, "BN", L"0.50000000"},
    {"pixelSizes", 13578, 200, "", L"0.50000000 x 0.25000000"},
    {"minimumX", 13541, 200, "N", L"500000.000"},
    {"maximumX", 13542, 200, "N", L"500300.000"},
    {"minimumY", 13538, 200, "N", L"5700000.000"},
    {"maximumY", 13539, 200, "N", L"5700100.000"},
    {"crsName", 13509, 200, "B", L"ETRS89 / UTM zone 32N"},
    {"linearUnit", 13579, 200, "B", L"Meters"},
    {"angularUnit", 13580, 200, "", L"degree"},
    {"wkt", 13581, 200, "", nullptr},
    {"gpsTime", 13513, 200, "", L"No GPS Time"},
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
    const RasterRow ortho = testing::DescribedRaster(L"/data/ortho.tif", testing::ProjectedWkt(), L"Ortho");
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
            const std::wstring text = CellText(*column, ortho);
            if (use == RasterUse::Dem && expected.name == std::string("gpsTime")) {
                EXPECT_EQ(text, L"Standard GPS Time");
            } else if (expected.text != nullptr) {
                EXPECT_EQ(text, expected.text) << expected.name;
            }
            ++column;
        }
    }
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
