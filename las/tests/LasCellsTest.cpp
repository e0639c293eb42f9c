#include "las/LasCells.h"

#include <gmock/gmock.h>

#include <map>
#include <set>

#include "las/page/LasDetails.h"
#include "las/testing/LasBuilder.h"
#include "support/Text.h"
#include "support/testing/TemporaryFolder.h"

namespace orvex {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using testing::LasBuilder;

class LasCells : public ::testing::Test {
  protected:
    LasRow Row(const LasBuilder& builder, const std::wstring& name = L"tile.las") const {
        return {InspectLasFile(folder.Write(name, builder.Build())), L"LAS Layer_1", false, 1};
    }
    testing::TemporaryFolder folder;
};

TEST(LasColumnTable, TheFixedColumnsAreWhereTheyBelong) {
    const auto columns = LasColumns();
    ASSERT_EQ(columns.size(), 52U);
    const std::set<int> numbers{5, 35, 36, 37, 41, 42, 43, 44, 45, 46};
    const std::map<int, StringId> tooltips{{5, text::kSizeTooltip},
                                           {13, text::kLasGroupTooltip},
                                           {14, text::kLasIndexTooltip},
                                           {15, text::kLasCompressedTooltip},
                                           {33, text::kLasGpsTimeTooltip}};
    std::set<std::string> names;
    int basic = 0;
    for (int i = 0; i < 52; ++i) {
        const GridColumn& column = columns[static_cast<std::size_t>(i)];
        EXPECT_TRUE(names.insert(column.name).second) << column.name;
        EXPECT_EQ(column.kind == CellKind::Number, numbers.contains(i)) << i;
        EXPECT_EQ(column.hidden, i == 1 || i == 2) << i;
        EXPECT_EQ(column.frozen, i == 0 || i == 3) << i;
        EXPECT_EQ(column.resizable, i != 0) << i;
        EXPECT_EQ(column.align == HeaderAlign::Right, i >= 35 && i <= 46) << i;
        EXPECT_EQ(column.align == HeaderAlign::Centre, i == 17) << i;
        EXPECT_EQ(column.caption.value == 0, i <= 2) << i;
        if (tooltips.contains(i)) {
            EXPECT_EQ(column.tooltip, tooltips.at(i)) << i;
        }
        basic += column.basic ? 1 : 0;
    }
    EXPECT_EQ(columns[7].minimumWidth, 150);
    EXPECT_EQ(columns[7].width, 150);
    EXPECT_EQ(columns[9].maximumWidth, 1000);
    EXPECT_LE(basic, 12);
}

TEST_F(LasCells, EveryKindOfFactOfAHeaderIsShown) {
    const LasRow row = Row(LasBuilder(14, 7)
                               .SystemIdentifier("SCANNER")
                               .GeneratingSoftware("SOFT")
                               .CreationDate(60, 2024)
                               .EncodingBits(1)
                               .Scale(0.001, 0.01, 0.5)
                               .Offset(1000, 0, 0)
                               .AddExtraBytes("amplitude", 3, 2)
                               .AddPoints(9)
                               .ProjectedEpsg(25832));
    const std::pair<LasColumn, std::wstring> expected[] = {
        {LasColumn::Path, row.inspection.path},
        {LasColumn::FileName, L"tile.las"},
        {LasColumn::Folder, FromPath(folder.Path())},
        {LasColumn::Version, L"1.4"},
        {LasColumn::Layer, L"LAS Layer_1"},
        {LasColumn::Epsg, L"EPSG:25832"},
        {LasColumn::CrsName, row.inspection.crs->name},
        {LasColumn::Group, L"1"},
        {LasColumn::Companion, Text(text::kCellNone)},
        {LasColumn::Compressed, Text(text::kCellNo)},
        {LasColumn::PointFormat, L"7"},
        {LasColumn::RecordLength, L"38"},
        {LasColumn::ExtraBytes, L"amplitude"},
        {LasColumn::SystemId, L"SCANNER"},
        {LasColumn::Software, L"SOFT"},
        {LasColumn::Created, L"2024-02-29"},
        {LasColumn::HeaderSize, L"375"},
        {LasColumn::VlrCount, L"2"},
        {LasColumn::EvlrCount, L"0"},
        {LasColumn::CrsSource, Text(text::kCrsSourceGeoKeys)},
        {LasColumn::Waveform, Text(text::kCellNone)},
        {LasColumn::GpsTime, L"Standard GPS Time"},
        {LasColumn::Points, L"9"},
        {LasColumn::Density, L"2.25"},
        {LasColumn::Spacing, L"0.667"},
        {LasColumn::ScaleX, L"0.001"},
        {LasColumn::ScaleZ, L"0.5"},
        {LasColumn::MinimumX, L"1000.000"},
        {LasColumn::MaximumY, L"2002.000"},
        {LasColumn::OffsetX, L"1000"},
        {LasColumn::Attributes, Text(text::kLasGpsTime) + L", " + Text(text::kAttributeRgb)},
    };
    for (const auto& [column, text] : expected) {
        EXPECT_EQ(LasCellText(row, column), text) << LasColumns()[static_cast<std::size_t>(column)].name;
    }
    const std::wstring address = std::to_wstring(reinterpret_cast<std::uintptr_t>(row.inspection.file.get()));
    EXPECT_EQ(LasCellText(row, LasColumn::Details), address);
}

TEST_F(LasCells, TheSameFactsOfAnyVersionAndFormatNeverFail) {
    for (const int version : {10, 11, 12, 13, 14}) {
        for (int format = 0; format <= 10; ++format) {
            const LasRow row = Row(LasBuilder(version, format).AddPoints(4));
            for (int column = 0; column < kLasColumnCount; ++column) {
                EXPECT_NO_THROW(LasCellText(row, static_cast<LasColumn>(column)));
            }
            EXPECT_EQ(LasCellText(row, LasColumn::PointFormat), std::to_wstring(format));
        }
    }
}

TEST_F(LasCells, DegreesHaveMoreDecimalsAndNoDensity) {
    const LasRow row =
        Row(LasBuilder(12, 0).Scale(1e-7, 1e-7, 0.01).AddPoints(4, 7, 51).GeographicEpsg(4326));
    EXPECT_EQ(LasCellText(row, LasColumn::MinimumX), L"7.00000000");
    EXPECT_EQ(LasCellText(row, LasColumn::MinimumZ), L"100.000");
    EXPECT_THAT(LasCellText(row, LasColumn::Density), IsEmpty());
    EXPECT_THAT(LasCellText(row, LasColumn::Spacing), IsEmpty());
}

TEST_F(LasCells, SmallAndNegativeZeroNumbersStayReadable) {
    const LasRow row = Row(LasBuilder(12, 0).Offset(-0.0, 0, 0).AddPoint(0, 0, 0).AddPoint(1000, 100, 0));
    EXPECT_EQ(LasCellText(row, LasColumn::OffsetX), L"0");
    EXPECT_EQ(LasCellText(row, LasColumn::Density), L"0.000020");
}

TEST_F(LasCells, NumbersThatAreNoneAreLeftOut) {
    constexpr std::size_t kMaximumX = 179;
    const LasRow row =
        Row(LasBuilder(12, 0).AddPoints(4).Lie(kMaximumX, std::numeric_limits<double>::quiet_NaN()));
    EXPECT_TRUE(std::holds_alternative<std::monostate>(LasCell(row, LasColumn::MaximumX)));
    EXPECT_TRUE(std::holds_alternative<std::monostate>(LasCell(row, LasColumn::Density)));
}

TEST_F(LasCells, DatesAreCheckedBeforeTheyAreComputed) {
    const struct {
        std::uint16_t day;
        std::uint16_t year;
        const wchar_t* expected;
    } cases[] = {{1, 2023, L"2023-01-01"}, {365, 2023, L"2023-12-31"}, {366, 2024, L"2024-12-31"},
                 {0, 2023, L"2023"},       {400, 2023, L"2023"},       {5, 0, L""}};
    for (const auto& c : cases) {
        EXPECT_EQ(
            LasCellText(Row(LasBuilder(12, 0).AddPoints(1).CreationDate(c.day, c.year)), LasColumn::Created),
            c.expected);
    }
}

TEST_F(LasCells, AFileThatCannotBeReadShowsItsNameAndWhy) {
    LasRow row{InspectLasFile(folder.Write(L"bad.las", "nothing")), {}, false, 0};
    ASSERT_EQ(row.inspection.file, nullptr);
    EXPECT_EQ(LoadFlagOf(row), LoadFlag::NotLoadable);
    EXPECT_EQ(LoadFlagImage(LoadFlagOf(row)), 6);
    EXPECT_EQ(LasCellText(row, LasColumn::FileName), L"bad.las");
    EXPECT_EQ(LasCellText(row, LasColumn::State), row.inspection.summary);
    EXPECT_EQ(LasCellText(row, LasColumn::Details), L"0");
    EXPECT_EQ(row.inspection.fileSize, 7U) << "its size is still told";
    EXPECT_FALSE(FindingsText(row).empty());
    for (int column = IndexOf(LasColumn::PointFormat); column < IndexOf(LasColumn::FindingCount); ++column) {
        if (column != IndexOf(LasColumn::Modified)) {
            EXPECT_THAT(LasCellText(row, static_cast<LasColumn>(column)), IsEmpty()) << column;
        }
    }
    EXPECT_EQ(LasRecordsText(row), Text(text::kDetailsFileUnreadable));
}

TEST_F(LasCells, FindingsChangeTheFlagAndAreAllTold) {
    const LasRow row = Row(LasBuilder(12, 0).AddPoints(9).ProjectedEpsg(25832).Cut(260));
    ASSERT_NE(row.inspection.file, nullptr);
    ASSERT_FALSE(row.inspection.findings.empty());
    EXPECT_EQ(LoadFlagImage(LoadFlagOf(row)), 5);
    for (const LasFinding& finding : row.inspection.findings) {
        EXPECT_THAT(FindingsText(row), HasSubstr(finding.text));
    }
}

// A list of thousands of files must stay small: a row is its header, its records and a few short texts.
TEST_F(LasCells, ARowTakesLessThanFourKilobytes) {
    const LasRow row = Row(LasBuilder(14, 6).AddPoints(9).ProjectedEpsg(25832));
    EXPECT_LT(sizeof(LasRow), 512U);
    std::size_t texts = row.inspection.path.size() + row.inspection.summary.size() + row.layer.size();
    for (const LasFinding& finding : row.inspection.findings) {
        texts += finding.text.size();
    }
    const std::size_t file = 375 + row.inspection.file->Header().OffsetToPoints();
    EXPECT_LT(sizeof(LasRow) + texts * sizeof(wchar_t) + file, 3000U);
    const LasRow twin = Row(LasBuilder(14, 6).AddPoints(9).ProjectedEpsg(25832), L"twin.las");
    EXPECT_EQ(row.inspection.crs, twin.inspection.crs)
        << "one description of a CRS for all files that have it";
}

TEST_F(LasCells, TotalsAddUpWhatIsSelected) {
    std::vector<LasRow> rows;
    rows.push_back(Row(LasBuilder(12, 0).AddPoints(9).ProjectedEpsg(25832), L"a.las"));
    rows.push_back(Row(LasBuilder(12, 0).AddPoints(4, 5000, 6000, 7).ProjectedEpsg(25832), L"b.las"));
    rows.push_back(Row(LasBuilder(12, 0).AddPoints(4).ProjectedEpsg(28992), L"c.las"));
    rows.push_back({InspectLasFile(folder.Write(L"d.las", "nothing")), {}, false, 0});
    const std::size_t two[] = {0, 1};
    const LasTotals same = TotalsOf(rows, two);
    EXPECT_EQ(same.files, 2U);
    EXPECT_EQ(same.points, 13U);
    EXPECT_EQ(same.bytes, rows[0].inspection.fileSize + rows[1].inspection.fileSize);
    EXPECT_EQ(same.layers, 1U);
    ASSERT_TRUE(same.extent.has_value());
    EXPECT_THAT(*same.extent, ElementsAre(1000, 2000, 7, 5001, 6001, 100.08));

    const std::size_t all[] = {0, 1, 2, 3};
    const LasTotals mixed = TotalsOf(rows, all);
    EXPECT_EQ(mixed.notReadable, 1U);
    EXPECT_EQ(mixed.crsNames.size(), 2U);
    EXPECT_FALSE(mixed.extent.has_value()) << "extents of different systems do not add up";
}

}  // namespace
}  // namespace orvex
