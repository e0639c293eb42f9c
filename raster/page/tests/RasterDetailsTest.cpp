#include "raster/page/RasterDetails.h"

#include <gmock/gmock.h>

#include <QTextDocument>
#include <limits>

#include "raster/page/RasterBandTable.h"
#include "raster/page/RasterSections.h"
#include "raster/testing/RasterRows.h"
#include "support/Format.h"
#include "support/QtText.h"

namespace orvex {
namespace {

using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::IsSupersetOf;
using ::testing::Not;
using ::testing::SizeIs;

constexpr double kNan = std::numeric_limits<double>::quiet_NaN();

/// Text of a field; "-" when it is left out.
std::wstring Value(const RasterRow& row, StringId caption, RasterUse use = RasterUse::Image) {
    for (const DetailSection& section : RasterSections(row, use)) {
        for (const DetailField& field : section.fields) {
            if (field.caption == caption) {
                return field.value;
            }
        }
    }
    return L"-";
}

void ExpectFields(const RasterRow& row, std::initializer_list<std::pair<StringId, const wchar_t*>> fields) {
    for (const auto& [caption, value] : fields) {
        EXPECT_EQ(Value(row, caption), value) << caption.value;
    }
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

RasterRow Dem(const std::wstring& layer = {}) {
    RasterRow row = testing::DescribedRaster(L"/d/dem.tif", testing::ProjectedWkt(), layer);
    RasterProperties& properties = row.file->properties;
    properties.bands = 2;
    std::vector<RasterBandProperties> bands{FloatBand(-9999), FloatBand(kNan)};
    bands[0].minimum = 12.5;
    bands[1].minimum = -3;
    bands[0].maximum = 1000000;
    properties.bandDetails = bands;
    properties.compression = L"DEFLATE";
    properties.pixelIs = L"Point";
    properties.transform = {{500000, 0.5, 0, 5700100, 0, -0.25}};
    properties.sidecars = {L"/d/dem.tfw", L"/d/dem.tif.aux.xml"};
    properties.totalBytes = 3'000'000'000;
    return row;
}

TEST(RasterDetails, FieldsOfEachKindOfFile) {
    const RasterRow dem = Dem(L"DEM LAS Layer_1");
    RasterRow turned = Dem();
    turned.file->properties.transform = {{0, 0, -2, 0, 2, 0}};  // a quarter turn
    RasterRow brief = testing::DescribedRaster(L"/a.tif", {});
    brief.file->properties.hasDetails = false;
    ExpectFields(dem, {{text::kExtentX, L"500000.000 \u2013 500300.000"},
                       {text::kRasterTotalSizeMegabytes, L"3,000.00"},
                       {text::kRasterOtherFiles, L"dem.tfw\ndem.tif.aux.xml"},
                       {text::kGpsTimeType, L"-"},
                       {text::kRasterNoDataValue, L"-9999, NaN"},
                       {text::kRasterMinimum, L"-3"},
                       {text::kRasterMaximum, L"1000000"},
                       {text::kRasterUpperLeftCorner, L"-"},
                       {text::kRasterRotation, L"None"},
                       {text::kRasterPixelStandsFor, L"Its center point"},
                       {text::kRasterCompression, L"DEFLATE"},
                       {text::kRasterUncompressedMegabytes, L"1.92"},
                       {text::kRasterRpc, L"-"}});
    ExpectFields(turned, {{text::kRasterRotation, L"90.000000\u00b0"},
                          {text::kRasterUpperLeftCorner, L"0.000 / 0.000"}});
    ExpectFields(brief, {{text::kRasterNoDataValue, L"-"}, {text::kRasterCompression, L"-"}});
    EXPECT_EQ(Value(dem, text::kGpsTimeType, RasterUse::Dem), L"Standard GPS Time") << "an image has none";
    EXPECT_THAT(RasterCrsFields(brief), IsEmpty());
    EXPECT_THAT(BandTable(brief.Properties()).rows, IsEmpty());
    EXPECT_THAT(RasterSections(testing::RefusedRaster(L"/b", L"no"), RasterUse::Image), IsEmpty());
}

TEST(RasterDetails, ColumnsInWhichEveryBandIsEmptyAreLeftOut) {
    RasterRow row = Dem();
    std::vector<RasterBandProperties> scaled = row.file->properties.bandDetails;
    scaled[1].scale = 0.1F;
    row.file->properties.bandDetails = std::move(scaled);
    row.file->properties.bands = 300;
    const DetailTable table = BandTable(row.Properties());
    EXPECT_THAT(table.captions, ElementsAre(text::kRasterBand, text::kRasterDataType, text::kBitsPerBand,
                                            text::kRasterBandColor, text::kRasterNoDataValue,
                                            text::kRasterMinimum, text::kRasterMaximum, text::kRasterScale,
                                            text::kRasterBlockSize, text::kOverviews));
    ASSERT_THAT(table.rows, SizeIs(2));
    EXPECT_THAT(table.rows[0], ElementsAre(L"1", L"Float32", L"32", L"Gray", L"-9999", L"12.5", L"1000000",
                                           L"", L"256 x 256", L"0"));
    EXPECT_THAT(table.rows[1], Contains(L"0.1")) << "with the digits that single precision has";
    EXPECT_EQ(UnlistedBands(row.Properties()), 298U);
}

TEST(RasterDetails, ValuesAreWrittenPlainlyAndMayBeCut) {
    RasterProperties properties;
    std::vector<RasterBandProperties> bands{FloatBand(1000000), FloatBand(-3.4028234663852886e38),
                                            FloatBand(0.00005)};
    properties.bandDetails = bands;
    EXPECT_EQ(DistinctNodata(properties), L"1000000, -3.4028235e+38, 0.00005");
    bands.clear();
    for (int i = 0; i < 20; ++i) {
        bands.push_back(FloatBand(i));
    }
    properties.bandDetails = bands;
    EXPECT_EQ(DistinctNodata(properties), L"0, 1, 2, 3, 4, 5, 6, 7, ...");
}

/// The pane's first tab for these rows as lines: captions and values in turn.
std::vector<std::wstring> Lines(const std::vector<RasterRow>& rows, std::vector<std::size_t> records) {
    QTextDocument document;
    document.setHtml(
        RasterDetailsContent(rows, records, RasterUse::Image, QStringLiteral("#000000")).tabs.at(0));
    std::vector<std::wstring> lines;
    for (const QString& line : document.toPlainText().split(QLatin1Char('\n'), Qt::SkipEmptyParts)) {
        lines.push_back(ToWide(line));
    }
    return lines;
}

TEST(RasterDetails, TotalsUniteExtentsOfOneCrsOnly) {
    std::vector<RasterRow> rows;
    for (const std::array<double, 4>& extent : {std::array<double, 4>{500000, 5700000, 500300, 5700100},
                                                {500300, 5699000, 500900, 5700000},
                                                {kNan, 0, 1, 1}}) {
        rows.push_back(Dem(rows.size() < 2 ? L"A" : L"B"));
        rows.back().file->properties.extent = extent;
    }
    rows.push_back(testing::RefusedRaster(L"/c", L"no"));
    rows.push_back(testing::DescribedRaster(L"/e", testing::GeographicWkt(), L"C"));
    rows.push_back(testing::DescribedRaster(L"/f", {}, L"D"));
    const std::wstring projected = L"ETRS89 / UTM zone 32N";
    EXPECT_THAT(Lines(rows, {0, 1, 2, 3}),
                ElementsAre(Text(text::kTotalsSelection), Text(text::kTotalsFiles), L"4",
                            Text(text::kSizeMegabytes), L"7.02", Text(text::kRasterTotalSizeMegabytes),
                            L"9,000.00", Text(text::kRasterMegapixels), L"0.720", Text(text::kTotalsLayers),
                            L"2", Text(text::kTotalsUnloadableFiles), L"1", Text(text::kTotalsCrs), projected,
                            Text(text::kMinX), L"500000.000", Text(text::kMinY), L"5699000.000",
                            Text(text::kMaxX), L"500900.000", Text(text::kMaxY), L"5700100.000"));
    EXPECT_THAT(Lines(rows, {0, 4, 5}),
                IsSupersetOf({projected, std::wstring(L"WGS 84"), Text(text::kCellNone)}));
    EXPECT_THAT(Lines(rows, {0, 4, 5}), Not(Contains(Text(text::kMinX))));
    EXPECT_THAT(Lines(rows, {3}), ElementsAre(L"\uFFFC", Text(text::kRasterCannotBeRead) + L" no"))
        << "an icon and the reason";
}

}  // namespace
}  // namespace orvex
