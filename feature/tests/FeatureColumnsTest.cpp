#include "feature/FeatureColumns.h"

#include <gmock/gmock.h>

#include "feature/testing/TestShapefile.h"
#include "support/Format.h"
#include "support/Text.h"

namespace orvex {
namespace {

using testing::TemporaryFolder;
using testing::TestShapefile;

std::wstring Cell(const FeatureRow& row, std::string_view column) {
    return CellText(ColumnNamed(FeatureColumns(), column), row);
}

std::wstring Tooltip(const FeatureRow& row, std::string_view column) {
    return ColumnNamed(FeatureColumns(), column).look.tooltip(row);
}

FeatureRow KmlRow() {
    FeatureRow row;
    row.path = L"/data/a.kmz";
    row.kind = FeatureKind::Kmz;
    row.isRead = row.loadable = true;
    row.featureCount = 12;
    row.layers = {{L"Roads", 10}, {L"Trees", 2}};
    row.geometry = Text(text::kFeatureVarious);
    row.summary = FeatureSummary(row);
    row.crs = DescribeDefaultCrs();
    row.extent = {7.123456789, 50, 8, 51};
    return row;
}

TEST(FeatureColumns, ShowAShapefile) {
    const TemporaryFolder folder;
    TestShapefile file;
    file.extent = {1000.126, 2000, 3000.5, 4000};
    const FeatureRow row = InspectFeatureFile(file.Write(folder, L"Roads.old"));
    const std::pair<std::string_view, std::wstring> expected[] = {
        {"fileName", L"Roads.old.shp"},
        {"folder", FromPath(folder.Path())},
        {"size", L"0.00"},
        {"fileType", L"SHP"},
        {"features", L"3"},
        {"geometry", L"Point"},
        {"layer", L"Roads.old"},
        {"summary", L"Layers: 1,   Features: 3"},
        {"crsName", Text(text::kUnknown)},
        {"wkt", L""},
        {"linearUnit", Text(text::kUnknown)},
        {"angularUnit", Text(text::kUnknown)},
        {"minimumX", L"1000.13"},
        {"maximumX", L"3000.50"},
        {"minimumY", L"2000.00"},
        {"maximumY", L"4000.00"},
        {"fieldCount", L"3"},
        {"fields", L"NAME (String),\nHEIGHT (Double),\nNUMBER (Integer),\n"},
    };
    for (const auto& [column, text] : expected) {
        EXPECT_EQ(ToUtf8(Cell(row, column)), ToUtf8(text)) << column;
    }
}

TEST(FeatureColumns, ShowTheLayersOfAKmlFileAndItsDegrees) {
    FeatureRow row = KmlRow();
    EXPECT_EQ(Cell(row, "minimumX"), L"7.12345679");
    EXPECT_EQ(Cell(row, "layer"), Text(text::kFeatureVarious));
    EXPECT_EQ(Cell(row, "angularUnit"), L"Degrees");
    const std::wstring layers = L"Layers: 2,   Features: 12\nRoads (10)\nTrees (2)\n";
    EXPECT_EQ(Tooltip(row, "features"), layers);
    EXPECT_EQ(Tooltip(row, "summary"), layers);
    row.findings = {{FindingSeverity::Warning, L"A link was not followed.", "partly-read"}};
    EXPECT_EQ(Tooltip(row, "summary"), layers + L"A link was not followed.");
    row.layers.resize(1000, {L"Folder", 1});
    EXPECT_LT(Tooltip(row, "features").size(), 1000U) << "what a screen holds";
    row.kind = FeatureKind::Dxf;
    EXPECT_EQ(Tooltip(row, "features"), L"");
    EXPECT_EQ(Tooltip(row, "summary"), L"A link was not followed.");
}

TEST(FeatureColumns, StandInTheirOrderWithTheirBasics) {
    std::string names;
    std::string basics;
    for (const Column<FeatureRow>& column : FeatureColumns()) {
        names.append(column.name).append(" ");
        basics += column.basic ? '+' : '-';
    }
    EXPECT_EQ(
        names,
        "loadFlag path fileName folder size modified fileType features geometry layer summary crsName wkt "
        "linearUnit angularUnit minimumX maximumX minimumY maximumY fieldCount fields ");
    EXPECT_EQ(basics, "+-+-+--+++++---------");
}

}  // namespace
}  // namespace orvex
