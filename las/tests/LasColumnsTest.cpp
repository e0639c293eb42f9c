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
    LasRow Row(const LasBuilder& builder, const std::wstring& name = L"tile.las") const {
        LasRow row = InspectLasFile(folder.Write(name, builder.Build()));
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

// n: number; i: icon; r, c: right, centred; b: basic; h: hidden; f: frozen; w: fixed width; #, +: count, sum.
constexpr struct {
    const char* name;
    unsigned caption;
    unsigned tooltip;
    const char* flags;
    int width;
    int minimumWidth;
    int maximumWidth;
} kWanted[] = {
    {"loadFlag", 0, 0, "ibfw", 24, 0, 0},
    {"path", 0, 0, "h", 0, 0, 0},
    {"details", 0, 0, "h", 0, 0, 0},
    {"fileName", 40550, 0, "bf#", 0, 0, 0},
    {"folder", 40551, 0, "", 0, 0, 400},
    {"size", 40552, 13481, "nb+", 0, 0, 0},
    {"version", 40553, 0, "b", 0, 0, 0},
    {"layer", 40554, 40599, "b", 150, 150, 0},
    {"epsg", 40555, 0, "b", 0, 0, 0},
    {"state", 40556, 0, "b", 0, 0, 1000},
    {"crsName", 40557, 0, "b", 0, 0, 400},
    {"verticalCrs", 40558, 0, "", 0, 0, 300},
    {"units", 40559, 0, "", 0, 0, 0},
    {"group", 40560, 13480, "", 0, 0, 0},
    {"companion", 40561, 3378, "", 0, 0, 0},
    {"compressed", 40562, 3212, "", 0, 0, 0},
    {"returns", 40563, 40600, "", 0, 0, 0},
    {"pointFormat", 40564, 40601, "cb", 0, 0, 0},
    {"recordLength", 40565, 40602, "", 0, 0, 0},
    {"extraBytes", 40566, 40603, "", 0, 0, 300},
    {"systemId", 40567, 0, "", 0, 0, 0},
    {"software", 40568, 0, "", 0, 0, 0},
    {"created", 40569, 0, "", 0, 0, 0},
    {"sourceId", 40570, 0, "", 0, 0, 0},
    {"projectId", 40571, 0, "", 0, 0, 0},
    {"globalEncoding", 40572, 0, "", 0, 0, 0},
    {"headerSize", 40573, 0, "", 0, 0, 0},
    {"offsetToPoints", 40574, 0, "", 0, 0, 0},
    {"vlrCount", 40575, 0, "", 0, 0, 0},
    {"evlrCount", 40576, 0, "", 0, 0, 0},
    {"crsSource", 40577, 40604, "", 0, 0, 0},
    {"waveform", 40578, 0, "", 0, 0, 0},
    {"pointsByReturn", 40579, 0, "", 0, 0, 300},
    {"gpsTime", 40580, 13482, "", 0, 0, 0},
    {"modified", 40581, 0, "", 0, 0, 0},
    {"points", 40582, 0, "nrb+", 0, 0, 0},
    {"density", 40583, 40605, "nr", 0, 0, 0},
    {"spacing", 40584, 40606, "nr", 0, 0, 0},
    {"scaleX", 40585, 0, "r", 0, 0, 0},
    {"scaleY", 40586, 0, "r", 0, 0, 0},
    {"scaleZ", 40587, 0, "r", 0, 0, 0},
    {"minimumX", 40588, 0, "nr", 0, 0, 0},
    {"minimumY", 40589, 0, "nr", 0, 0, 0},
    {"minimumZ", 40590, 0, "nr", 0, 0, 0},
    {"maximumX", 40591, 0, "nr", 0, 0, 0},
    {"maximumY", 40592, 0, "nr", 0, 0, 0},
    {"maximumZ", 40593, 0, "nr", 0, 0, 0},
    {"offsetX", 40594, 0, "", 0, 0, 0},
    {"offsetY", 40595, 0, "", 0, 0, 0},
    {"offsetZ", 40596, 0, "", 0, 0, 0},
    {"findingCount", 40597, 0, "", 0, 0, 0},
    {"attributes", 40598, 40607, "", 0, 0, 0},
};

TEST(LasColumnTable, HasTheColumnsInTheirOrder) {
    ASSERT_EQ(LasColumns().size(), std::size(kWanted));
    for (std::size_t i = 0; i < std::size(kWanted); ++i) {
        const GridColumn& column = LasColumns()[i];
        const std::pair<bool, char> flags[] = {{column.kind == CellKind::Number, 'n'},
                                               {column.kind == CellKind::Flag, 'i'},
                                               {column.align == HeaderAlign::Right, 'r'},
                                               {column.align == HeaderAlign::Centre, 'c'},
                                               {column.basic, 'b'},
                                               {column.hidden, 'h'},
                                               {column.frozen, 'f'},
                                               {!column.resizable, 'w'},
                                               {column.footer == FooterKind::Count, '#'},
                                               {column.footer == FooterKind::Sum, '+'}};
        std::string shown;
        for (const auto& [isSet, flag] : flags) {
            shown += isSet ? std::string(1, flag) : "";
        }
        EXPECT_STREQ(column.name, kWanted[i].name);
        EXPECT_EQ(column.caption.value, kWanted[i].caption) << column.name;
        EXPECT_EQ(column.tooltip.value, kWanted[i].tooltip) << column.name;
        EXPECT_EQ(shown, kWanted[i].flags) << column.name;
        EXPECT_EQ(column.width, kWanted[i].width) << column.name;
        EXPECT_EQ(column.minimumWidth, kWanted[i].minimumWidth) << column.name;
        EXPECT_EQ(column.maximumWidth, kWanted[i].maximumWidth) << column.name;
    }
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
        {"scaleZ", L"0.5"},
        {"minimumX", L"1000.000"},
        {"maximumY", L"2002.000"},
        {"offsetX", L"1000"},
        {"attributes", Text(text::kLasGpsTime) + L", " + Text(text::kAttributeRgb)},
    };
    for (const auto& [column, text] : expected) {
        EXPECT_EQ(Shown(row, column), text) << column;
    }
    const std::wstring address = std::to_wstring(reinterpret_cast<std::uintptr_t>(row.file.get()));
    EXPECT_EQ(Shown(row, "details"), address);
}

TEST_F(LasCells, TheSameFactsOfAnyVersionAndFormatNeverFail) {
    for (const int version : {10, 11, 12, 13, 14}) {
        for (int format = 0; format <= 10; ++format) {
            const LasRow row = Row(LasBuilder(version, format).AddPoints(4));
            for (const auto& column : LasColumns()) {
                EXPECT_NO_THROW(CellText(column, row)) << column.name;
            }
            EXPECT_EQ(Shown(row, "pointFormat"), std::to_wstring(format));
        }
    }
}

TEST_F(LasCells, DegreesHaveMoreDecimalsAndNoDensity) {
    const LasRow row =
        Row(LasBuilder(12, 0).Scale(1e-7, 1e-7, 0.01).AddPoints(4, 7, 51).GeographicEpsg(4326));
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

// A list of thousands of files must stay small: a row is its header, its records and a few short texts.
TEST_F(LasCells, ARowTakesLessThanFourKilobytes) {
    const LasRow row = Row(LasBuilder(14, 6).AddPoints(9).ProjectedEpsg(25832));
    EXPECT_LT(sizeof(LasRow), 512U);
    std::size_t texts = row.path.size() + row.summary.size() + row.place.layer.size();
    for (const LasFinding& finding : row.findings) {
        texts += finding.text.size();
    }
    const std::size_t file = 375 + row.file->Header().OffsetToPoints();
    EXPECT_LT(sizeof(LasRow) + texts * sizeof(wchar_t) + file, 3000U);
    const LasRow twin = Row(LasBuilder(14, 6).AddPoints(9).ProjectedEpsg(25832), L"twin.las");
    EXPECT_EQ(row.crs, twin.crs) << "one description of a CRS for all files that have it";
}

}  // namespace
}  // namespace orvex
