#include "las/LasColumns.h"

#include <gmock/gmock.h>

#include "las/testing/LasBuilder.h"
#include "support/Text.h"
#include "support/testing/TemporaryFolder.h"

namespace orvex {
namespace {

using ::testing::HasSubstr;
using ::testing::IsEmpty;
using testing::LasBuilder;

class LasCells : public ::testing::Test {
  protected:
    LasRow Row(const LasBuilder& builder) const {
        LasRow row = InspectLasFile(folder.Write(L"tile.las", builder.Build()));
        row.place = {L"LAS Layer_1", false, 1};
        return row;
    }
    static std::wstring Shown(const LasRow& row, const char* column) {
        return CellText(ColumnNamed(LasColumns(), column), row);
    }
    static bool IsEmptyCell(const LasRow& row, const char* column) {
        return std::holds_alternative<std::monostate>(ColumnNamed(LasColumns(), column).cell(row));
    }
    testing::TemporaryFolder folder;
};

TEST_F(LasCells, EveryKindOfFactOfAHeaderIsShown) {
    const LasRow row = Row(LasBuilder(14, 7)
                               .SystemIdentifier("SCANNER")
                               .GeneratingSoftware("SOFT")
                               .CreationDate(60, 2024)
                               .EncodingBits(1)
                               .Scale(0.001, 0.01, 0.5)
                               .Offset(1000, 2000, 5)
                               .AddExtraBytes("amplitude", 3, 2)
                               .AddPoints(9)
                               .ProjectedEpsg(25832));
    const std::pair<const char*, std::wstring> expected[] = {
        {"path", row.path},
        {"fileName", L"tile.las"},
        {"folder", FromPath(folder.Path())},
        {"version", L"1.4"},
        {"layer", L"LAS Layer_1"},
        {"epsg", L"EPSG:25832"},
        {"crsName", row.crs->name},
        {"group", L"1"},
        {"companion", Text(text::kCellNone)},
        {"compressed", Text(text::kCellNo)},
        {"pointFormat", L"7"},
        {"recordLength", L"38"},
        {"extraBytes", L"amplitude"},
        {"systemId", L"SCANNER"},
        {"software", L"SOFT"},
        {"created", L"2024-02-29"},
        {"headerSize", L"375"},
        {"vlrCount", L"2"},
        {"evlrCount", L"0"},
        {"crsSource", Text(text::kCrsSourceGeoKeys)},
        {"waveform", Text(text::kCellNone)},
        {"gpsTime", L"Standard GPS Time"},
        {"points", L"9"},
        {"density", L"2.25"},
        {"spacing", L"0.667"},
        {"scaleX", L"0.001"},
        {"scaleY", L"0.01"},
        {"scaleZ", L"0.5"},
        {"minimumX", L"1000.000"},
        {"minimumY", L"2000.000"},
        {"minimumZ", L"100.000"},
        {"maximumX", L"1002.000"},
        {"maximumY", L"2002.000"},
        {"maximumZ", L"100.080"},
        {"offsetX", L"1000"},
        {"offsetY", L"2000"},
        {"offsetZ", L"5"},
        {"attributes", Text(text::kLasGpsTime) + L", " + Text(text::kAttributeRgb)},
    };
    for (const auto& [column, text] : expected) {
        EXPECT_EQ(Shown(row, column), text) << column;
    }
    const std::wstring address = std::to_wstring(reinterpret_cast<std::uintptr_t>(row.file.get()));
    EXPECT_EQ(Shown(row, "details"), address);
}

TEST_F(LasCells, DegreesHaveMoreDecimalsAndNoDensity) {
    const LasRow row = Row(LasBuilder(12, 0)
                               .Scale(1e-7, 1e-7, 0.01)
                               .AddPoints(4, 7, 51)
                               .GeoKeys({1, 1, 0, 2, 1024, 0, 1, 2, 2048, 0, 1, 4326}));
    EXPECT_EQ(Shown(row, "minimumX"), L"7.00000000");
    EXPECT_EQ(Shown(row, "minimumZ"), L"100.000");
    EXPECT_THAT(Shown(row, "density"), IsEmpty());
    EXPECT_THAT(Shown(row, "spacing"), IsEmpty());
}

TEST_F(LasCells, SmallAndNegativeZeroNumbersStayReadable) {
    const LasRow row = Row(LasBuilder(12, 0).Offset(-0.0, 0, 0).AddPoint(0, 0, 0).AddPoint(1000, 100, 0));
    EXPECT_EQ(Shown(row, "offsetX"), L"0");
    EXPECT_EQ(Shown(row, "density"), L"0.000020");
}

TEST_F(LasCells, NumbersThatAreNoneAreLeftOut) {
    constexpr std::size_t kMaximumX = 179;
    const LasRow row =
        Row(LasBuilder(12, 0).AddPoints(4).Lie(kMaximumX, std::numeric_limits<double>::quiet_NaN()));
    EXPECT_TRUE(IsEmptyCell(row, "maximumX"));
    EXPECT_TRUE(IsEmptyCell(row, "density"));
}

TEST_F(LasCells, DatesAreCheckedBeforeTheyAreComputed) {
    const struct {
        std::uint16_t day;
        std::uint16_t year;
        const wchar_t* expected;
    } cases[] = {{1, 2023, L"2023-01-01"}, {365, 2023, L"2023-12-31"}, {366, 2024, L"2024-12-31"},
                 {0, 2023, L"2023"},       {400, 2023, L"2023"},       {5, 0, L""}};
    for (const auto& c : cases) {
        EXPECT_EQ(Shown(Row(LasBuilder(12, 0).AddPoints(1).CreationDate(c.day, c.year)), "created"),
                  c.expected);
    }
}

TEST_F(LasCells, AFileThatCannotBeReadShowsItsNameAndWhy) {
    LasRow row = InspectLasFile(folder.Write(L"bad.las", "nothing"));
    ASSERT_EQ(row.file, nullptr);
    EXPECT_EQ(LoadFlagOf(row), LoadFlag::NotLoadable);
    EXPECT_EQ(LoadFlagImage(LoadFlagOf(row)), 6);
    EXPECT_EQ(Shown(row, "fileName"), L"bad.las");
    EXPECT_EQ(Shown(row, "state"), row.summary);
    EXPECT_EQ(Shown(row, "details"), L"0");
    EXPECT_EQ(row.fileSize, 7U) << "its size is still told";
    EXPECT_FALSE(FindingsText(row).empty());
    const auto first = std::ranges::find(LasColumns(), std::string_view("pointFormat"), &GridColumn::name);
    for (const auto& column : std::span(first, LasColumns().end())) {
        const std::string_view name = column.name;
        if (name != "modified" && name != "findingCount") {
            EXPECT_THAT(CellText(column, row), IsEmpty()) << name;
        }
    }
}

TEST_F(LasCells, FindingsChangeTheFlagAndAreAllReported) {
    const LasRow row = Row(LasBuilder(12, 0).AddPoints(9).ProjectedEpsg(25832).Cut(260));
    ASSERT_NE(row.file, nullptr);
    ASSERT_FALSE(row.findings.empty());
    EXPECT_EQ(LoadFlagImage(LoadFlagOf(row)), 5);
    for (const LasFinding& finding : row.findings) {
        EXPECT_THAT(FindingsText(row), HasSubstr(finding.text));
    }
}

}  // namespace
}  // namespace orvex
