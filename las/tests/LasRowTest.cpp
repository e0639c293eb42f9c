#include "las/LasRow.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <thread>

#include "host/utilities/testing/LazSamples.h"
#include "las/LasColumns.h"
#include "las/testing/LasBuilder.h"
#include "las/testing/QvrSample.h"
#include "support/Format.h"
#include "support/Text.h"
#include "support/testing/TemporaryFolder.h"

namespace orvex {
namespace {

using ::testing::AnyOf;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using testing::LasBuilder;
using ::testing::Not;

constexpr const char* kWgs84 =
    R"(GEOGCS["WGS 84",DATUM["WGS_1984",SPHEROID["WGS 84",6378137,298.257223563]],PRIMEM["Greenwich",0],)"
    R"(UNIT["degree",0.0174532925199433],AUTHORITY["EPSG","4326"]])";

constexpr const wchar_t* kNoCrs = L"The file carries no coordinate reference system.";

std::wstring Shown(const LasRow& row, const char* column) {
    return CellText(ColumnNamed(LasColumns(), column), row);
}

class LasRowTest : public ::testing::Test {
  protected:
    LasRow Inspect(const LasBuilder& builder) const {
        return InspectLasFile(folder_.Write(L"a.las", builder.Build()));
    }
    static bool IsEmptyCell(const LasRow& row, const char* column) {
        return std::holds_alternative<std::monostate>(ColumnNamed(LasColumns(), column).cell(row));
    }
    static bool Has(const LasRow& row, std::string_view code) {
        return std::ranges::any_of(row.findings, [code](const auto& f) { return f.code == code; });
    }

    const testing::TemporaryFolder folder_;
};

TEST_F(LasRowTest, ChoosesTheCrsByTheWktBitAndSaysWhenItCannot) {
    constexpr const wchar_t* kUtm = L"ETRS89 / UTM zone 32N";
    using enum LasCrsSource;
    const LasBuilder plain = LasBuilder(14, 1).AddPoint(0, 0, 0);
    const LasBuilder keys = LasBuilder(plain).ProjectedEpsg(25832);
    const LasBuilder badKeys = LasBuilder(plain).GeoKeys({1, 1, 0, 65535});
    const auto noBit = [](LasBuilder builder) { return builder.Lie<std::uint16_t>(6, 0); };
    const struct {
        const char* what;
        LasBuilder builder;
        const wchar_t* name;
        LasCrsSource source;
        const wchar_t* finding;  ///< start and end, with "..." between them
    } cases[] = {
        {"keys", keys, kUtm, GeoKeys, L""},
        {"keys and WKT, no bit", noBit(LasBuilder(keys).Wkt(kWgs84)), kUtm, GeoKeys, L""},
        {"keys and WKT, bit", LasBuilder(keys).Wkt(kWgs84), L"WGS 84", Wkt, L""},
        {"WKT, no bit", noBit(LasBuilder(plain).Wkt(kWgs84)), L"WGS 84", Wkt, L""},
        {"WKT in an EVLR", LasBuilder(keys).Wkt(kWgs84, true), L"WGS 84", Wkt, L""},
        {"padded WKT", LasBuilder(plain).Wkt(std::string(kWgs84) + " \r\n"), L"WGS 84", Wkt, L""},
        {"bit but no WKT", LasBuilder(keys).EncodingBits(16), kUtm, GeoKeys, L""},
        {"empty WKT", LasBuilder(keys).Wkt(""), kUtm, GeoKeys, L""},
        {"empty keys", noBit(LasBuilder(plain).GeoKeys({}).Wkt(kWgs84)), L"WGS 84", Wkt, L""},
        {"garbage WKT", LasBuilder(plain).Wkt("no WKT at all"), L"", None,
         L"The coordinate reference system of the file cannot be read. The WKT record cannot be read: ..."},
        {"garbage WKT, good keys", LasBuilder(keys).Wkt("PROJCS[\"cut"), kUtm, GeoKeys,
         L"The WKT record cannot be read: ... is taken from the GeoTIFF keys."},
        {"bad keys, good WKT", noBit(LasBuilder(badKeys).Wkt(kWgs84)), L"WGS 84", Wkt,
         L"The GeoTIFF key directory announces 65535 keys but holds 0. ... is taken from the WKT record."},
        {"keys that promise more", badKeys, L"", None,
         L"The coordinate reference system of the file cannot be read. The GeoTIFF key directory announces "
         L"65535 keys but holds 0."},
        {"an unknown code", LasBuilder(plain).ProjectedEpsg(60000), L"", None,
         L"The coordinate reference system of the file cannot be read. The GeoTIFF keys name ..."},
        {"keys without entries", LasBuilder(plain).GeoKeys({1, 1, 0, 0}), L"", None, kNoCrs},
        {"units only", LasBuilder(plain).GeoKeys({1, 1, 0, 2, 3076, 0, 1, 9001, 4099, 0, 1, 9001}), L"", None,
         kNoCrs},
        {"nothing but an empty WKT", LasBuilder(plain).Wkt(""), L"", None, kNoCrs},
        {"none", plain, L"", None, kNoCrs},
    };
    for (const auto& expected : cases) {
        const LasRow found = Inspect(expected.builder);
        ASSERT_TRUE(found.loadable) << expected.what;
        EXPECT_EQ(found.crs->name, expected.name) << expected.what;
        EXPECT_EQ(found.crsSource, expected.source) << expected.what;
        const std::wstring finding = expected.finding;
        const std::size_t dots = std::min(finding.find(L"..."), finding.size());
        EXPECT_TRUE(FindingsText(found).starts_with(finding.substr(0, dots)))
            << expected.what << ": " << ToUtf8(FindingsText(found));
        EXPECT_TRUE(FindingsText(found).ends_with(finding.substr(std::min(dots + 3, finding.size()))))
            << expected.what << ": " << ToUtf8(FindingsText(found));
        EXPECT_EQ(FindingsText(found).empty(), finding.empty()) << expected.what;
        EXPECT_EQ(found.file->CrsWkt().empty(), expected.source == None) << expected.what;
    }
}

TEST_F(LasRowTest, FindsAnExtentOutsideTheAreaOfItsCrsAndGuessesWhy) {
    const StringId none{};
    const struct {
        std::uint16_t epsg;
        bool isGeographic;
        double x, y;
        bool isOutside;
        StringId guess;
    } cases[] = {
        {25832, false, 500'000, 5'400'000, false, none},
        {25832, false, 920'000, 5'700'000, false, none},  // the east of a country that uses one zone
        {25833, false, -75'000, 6'500'000, false, none},  // the west of another
        {25832, false, 1'000, 2'000, true, none},
        {25832, false, 5'400'000, 500'000, true, text::kExtentAxesSwapped},
        {25832, false, 9, 50, true, text::kExtentInDegrees},
        {32632, false, 9, 50, true, text::kExtentInDegrees},
        {25832, false, 1'640'420, 17'716'535, true, text::kExtentInFeet},
        {25832, false, 32'500'000, 5'400'000, true, text::kExtentOfOtherZone},
        {31467, false, 4'400'000, 5'400'000, true, text::kExtentOfOtherZone},
        {2249, false, 230'000, 900'000, true, text::kExtentInMetres},
        {4326, true, 350, 51, false, none},
        {4326, true, 500'000, 5'400'000, true, text::kExtentNotInDegrees},
        {4269, true, -83, 39, false, none},  // an area across the 180th meridian
        {4269, true, 39, -83, true, text::kExtentAxesSwapped},
    };
    for (const auto& c : cases) {
        const LasBuilder file = LasBuilder(12, 1).Scale(1, 1, 1).AddPoints(4, c.x, c.y);
        const LasRow row =
            Inspect(c.isGeographic ? LasBuilder(file).GeoKeys({1, 1, 0, 2, 1024, 0, 1, 2, 2048, 0, 1, c.epsg})
                                   : LasBuilder(file).ProjectedEpsg(c.epsg));
        EXPECT_EQ(Has(row, "extent-outside-crs"), c.isOutside) << c.epsg << ' ' << c.x << ' ' << c.y;
        if (c.guess != none) {
            EXPECT_THAT(row.summary, HasSubstr(Text(c.guess))) << c.epsg << ' ' << c.x;
        }
    }
}

TEST_F(LasRowTest, CoordinatesThatNoPlaceHasAreAWarningWithoutACrsToo) {
    const LasRow row = Inspect(LasBuilder(12, 1).Scale(1, 1, 1).AddPoints(4, -235'434'519, 5'400'000));
    EXPECT_STREQ(row.findings.front().code, "extent-impossible");
    EXPECT_EQ(LoadFlagOf(row), LoadFlag::Findings);
    const LasRow empty = Inspect(LasBuilder(12, 1).Lie(187, -1e300));
    EXPECT_FALSE(Has(empty, "extent-impossible")) << "no points, no place";
}

TEST_F(LasRowTest, PutsTheWorstFindingIntoTheSummary) {
    const LasRow odd = Inspect(
        LasBuilder(12, 1).AddPoints(5).Lie(131, 0.0).Lie<std::uint32_t>(107, 9).Lie<std::uint32_t>(111, 0));
    EXPECT_TRUE(odd.loadable);
    EXPECT_EQ(odd.summary,
              L"The file is truncated by 4 points: its header counts 9 points, the file holds 5.");
    EXPECT_EQ(LoadFlagImage(LoadFlagOf(odd)), 5);
    EXPECT_EQ(odd.findings.size(), 3U);
    EXPECT_THAT(FindingsText(odd), HasSubstr(odd.findings[2].text)) << "all of them";
    EXPECT_STREQ(odd.findings[1].code, "scale-zero");
    EXPECT_STREQ(odd.findings[2].code, "no-crs");
    // Notes have an icon of their own; a missing CRS comes before what else is noted.
    const LasRow noted = Inspect(LasBuilder(14, 6).AddPoints(5).EncodingBits(0));
    EXPECT_EQ(noted.findings.size(), 2U);
    EXPECT_EQ(noted.summary, kNoCrs);
    EXPECT_EQ(LoadFlagImage(LoadFlagOf(noted)), 4);
    const LasRow good = Inspect(LasBuilder(12, 1).AddPoints(5, 500'000, 5'400'000).ProjectedEpsg(25832));
    EXPECT_EQ(good.summary, L"OK");
    EXPECT_EQ(LoadFlagImage(LoadFlagOf(good)), 3);
}

TEST_F(LasRowTest, AFileThatTheProjectHasSaysSoBehindWhatIsWorse) {
    const LasBuilder good = LasBuilder(12, 1).AddPoints(5, 500'000, 5'400'000).ProjectedEpsg(25832);
    const LasBuilder odd = LasBuilder(good).Lie(131, 0.0);
    const std::wstring has = Text(text::kFileInProject);
    const std::wstring zero = FormatText(Text(text::kLasScaleZero), {L"X"});
    const struct {
        LasBuilder file;
        int image;
        std::wstring state, tooltip;
    } cases[] = {
        {good, 2, has, has},
        {LasBuilder(12, 1).AddPoints(5), 2, has + L" " + kNoCrs, kNoCrs + (L"\n" + has)},
        {odd, 5, zero + L" " + has, zero + L"\n" + has},
    };
    for (const auto& c : cases) {
        LasRow row = Inspect(c.file);
        row.place.inProject = true;
        EXPECT_EQ(Shown(row, "state"), c.state);
        EXPECT_EQ(FindingsText(row), c.tooltip);
        EXPECT_EQ(ColumnNamed(LasColumns(), "loadFlag").look.icon(row), c.image);
    }
}

TEST_F(LasRowTest, SaysWhyAFileCannotBeLoaded) {
    const std::wstring folder = FromPath(folder_.Path());
    const std::string cut = LasBuilder(14, 6).AddPoints(1).AddEvlr("a", 1, "").Build();
    const struct {
        std::wstring path;
        std::wstring summary;
        std::wstring message = {};  ///< of the exception, where the summary has other words
    } cases[] = {
        {L"", Text(text::kFileMissing), L"'' file does not exist. Cannot open."},
        {folder, L"'" + folder + L"' is not a regular file."},
        {folder_.Write(L"short.las", "LASF"), Text(text::kLasHeaderCutOff),
         L"ReadHeaderBlock failed on '" + folder_.Name(L"short.las") + L"'."},
        {folder_.Write(L"types.las", LasBuilder(14, 6).AddExtraBytes("a", 31, 2).AddPoints(1).Build()),
         Text(text::kLasExtraBytesTypeInvalid),
         L"GetExtraByteOffsets: '31' is not a valid extra bytes data_type value."},
        {folder_.Write(L"cut.las", cut.substr(0, cut.size() - 30)), Text(text::kLasEvlrsUnreadable),
         L"Failed to read EVLR header section of LAS file into memory."},
        {folder_.Write(L"text.las", std::string(300, 't')),
         L"'" + folder_.Name(L"text.las") + L"' is not a LAS file: it does not begin with \"LASF\"."},
    };
    for (const auto& expected : cases) {
        const LasRow found = InspectLasFile(expected.path);
        EXPECT_FALSE(found.loadable);
        EXPECT_EQ(found.summary, expected.summary);
        EXPECT_EQ(found.path, expected.path);
        EXPECT_EQ(found.file, nullptr);
        ASSERT_NE(found.crs, nullptr);
        EXPECT_STREQ(found.findings.front().code,
                     found.summary.find(L"LASF") == std::wstring::npos ? "unreadable" : "signature-missing");
        EXPECT_EQ(FindingsText(found), expected.message.empty()
                                           ? expected.summary
                                           : expected.summary + L"\n" +
                                                 FormatText(Text(text::kReaderMessage), {expected.message}));
    }
    // Where a disk or the system fails.
    for (const wchar_t* message :
         {L"Unable to read EVLRs. System Error", L"CreateFile failed on 'a'. GetLastError: 5.",
          L"CreateFileMapping failed on 'a'. GetLastError: 8.", L"std::bad_alloc",
          L"Setting file pointer failed when skipping record data for evlr."}) {
        const std::wstring plain = UnreadLasFile(L"a", message).summary;
        EXPECT_THAT(plain, Not(AnyOf(IsEmpty(), HasSubstr(message)))) << ToUtf8(message);
    }
}

TEST_F(LasRowTest, ShowsWhetherItsCompanionBelongsToIt) {
    const LasBuilder las = LasBuilder(12, 1).AddPoints(5);
    const std::wstring path = folder_.Write(L"a.las", las.Build());
    EXPECT_EQ(Shown(InspectLasFile(path), "companion"), Text(text::kCellNone));
    testing::WriteQvrBeside(path);
    const LasRow fresh = InspectLasFile(path);
    EXPECT_EQ(Shown(fresh, "companion"), Text(text::kIndexQvr));
    EXPECT_EQ(fresh.summary, kNoCrs);

    const LasRow stale = Inspect(LasBuilder(las).Append("x"));
    EXPECT_EQ(Shown(stale, "companion"), Text(text::kIndexQvrStale));
    EXPECT_STREQ(stale.findings.front().code, "companion-stale");
    EXPECT_THAT(ToUtf8(stale.summary), HasSubstr("the size was 367 bytes and is 368"));
    EXPECT_FALSE(HasErrors(stale));

    const std::wstring twin = folder_.Write(L"a.laz", LasBuilder(las).AddPoints(1).Build());
    testing::WriteQvrBeside(twin);
    const LasRow other = InspectLasFile(path);
    EXPECT_EQ(Shown(other, "companion"), Text(text::kIndexQvrOther));
    EXPECT_STREQ(other.findings.front().code, "companion-of-other-file");
    EXPECT_THAT(ToUtf8(other.summary), HasSubstr("is that of 'a.laz'"));

    folder_.Write(L"a.qvr", "companion");
    const LasRow unreadable = InspectLasFile(path);
    EXPECT_EQ(Shown(unreadable, "companion"), Text(text::kIndexQvrUnreadable));
    EXPECT_STREQ(unreadable.findings.front().code, "companion-unreadable");
    EXPECT_THAT(ToUtf8(unreadable.summary), HasSubstr("a.qvr' is not a QVR file"));
}

// Compressed points cannot be counted by the file's size; the table of chunks is at its end.
TEST_F(LasRowTest, FindsTruncatedCompressedFiles) {
    const std::wstring path = folder_.Name(L"tile.laz");
    for (const testing::LazSample& sample :
         {testing::LazSample{.versionMinor = 2, .pointFormat = 1, .recordLength = 28, .points = 5000},
          testing::LazSample{.versionMinor = 4, .pointFormat = 6, .recordLength = 30, .points = 5000}}) {
        testing::WriteSample(path, sample, true);
        EXPECT_FALSE(HasErrors(InspectLasFile(path)));
        const auto size = std::filesystem::file_size(ToPath(path));
        for (const std::uintmax_t length : {size / 2, size - 30}) {
            testing::WriteSample(path, sample, true);
            std::filesystem::resize_file(ToPath(path), length);
            const LasRow row = InspectLasFile(path);
            EXPECT_TRUE(row.loadable);
            EXPECT_TRUE(HasErrors(row)) << length << " of " << size;
            EXPECT_NE(row.summary.find(L"is not complete"), std::wstring::npos) << ToUtf8(row.summary);
        }
    }
    const LasRow noCodec = Inspect(LasBuilder(12, 1).AddPoints(5).MarkCompressed());
    EXPECT_NE(noCodec.summary.find(L"compression record"), std::wstring::npos) << ToUtf8(noCodec.summary);
}

TEST_F(LasRowTest, WorksFromManyThreads) {
    std::vector<std::wstring> paths;
    for (int i = 0; i < 12; ++i) {
        const auto code = static_cast<std::uint16_t>(25828 + i % 6);
        paths.push_back(folder_.Write(std::to_wstring(i) + L".las",
                                      LasBuilder().AddPoints(2).ProjectedEpsg(code).Build()));
    }
    std::vector<std::jthread> threads;
    threads.reserve(4);
    for (int thread = 0; thread < 4; ++thread) {
        threads.emplace_back([&paths] {
            for (std::size_t i = 0; i < paths.size(); ++i) {
                EXPECT_EQ(InspectLasFile(paths[i]).crs->epsg, static_cast<long>(25828 + i % 6));
            }
        });
    }
}

TEST_F(LasRowTest, EveryKindOfFactOfAHeaderIsShown) {
    LasRow row = Inspect(LasBuilder(14, 7)
                             .SystemIdentifier("SCANNER")
                             .GeneratingSoftware("SOFT")
                             .CreationDate(60, 2024)
                             .EncodingBits(1)
                             .Scale(0.001, 0.01, 0.5)
                             .Offset(1000, 2000, 5)
                             .AddExtraBytes("amplitude", 3, 2)
                             .AddPoints(9)
                             .ProjectedEpsg(25832));
    row.place = {L"LAS Layer_1", false, 1};
    const std::pair<const char*, std::wstring> expected[] = {
        {"path", row.path},
        {"fileName", L"a.las"},
        {"folder", FromPath(folder_.Path())},
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
    EXPECT_EQ(ColumnNamed(LasColumns(), "globalEncoding").look.tooltip(row),
              Text(text::kEncodingStandardGps));
    const LasRow copc = Inspect(LasBuilder(14, 6).AddPoints(1).AddVlr("copc", 1, "info").MarkCompressed());
    EXPECT_EQ(Shown(copc, "compressed"), Text(text::kCompressedCopc));
    const std::wstring address = std::to_wstring(reinterpret_cast<std::uintptr_t>(row.file.get()));
    EXPECT_EQ(Shown(row, "details"), address);
}

TEST_F(LasRowTest, DegreesHaveMoreDecimalsAndNoDensity) {
    const LasRow row = Inspect(LasBuilder(12, 0)
                                   .Scale(1e-7, 1e-7, 0.01)
                                   .AddPoints(4, 7, 51)
                                   .GeoKeys({1, 1, 0, 2, 1024, 0, 1, 2, 2048, 0, 1, 4326}));
    EXPECT_EQ(Shown(row, "minimumX"), L"7.00000000");
    EXPECT_EQ(Shown(row, "minimumZ"), L"100.000");
    EXPECT_THAT(Shown(row, "density"), IsEmpty());
    EXPECT_THAT(Shown(row, "spacing"), IsEmpty());
}

TEST_F(LasRowTest, SmallAndNegativeZeroNumbersStayReadable) {
    const LasRow row = Inspect(LasBuilder(12, 0).Offset(-0.0, 0, 0).AddPoint(0, 0, 0).AddPoint(1000, 100, 0));
    EXPECT_EQ(Shown(row, "offsetX"), L"0");
    EXPECT_EQ(Shown(row, "density"), L"0.000020");
}

TEST_F(LasRowTest, NumbersThatAreNoneAreLeftOut) {
    constexpr std::size_t kMaximumX = 179;
    const LasRow row =
        Inspect(LasBuilder(12, 0).AddPoints(4).Lie(kMaximumX, std::numeric_limits<double>::quiet_NaN()));
    EXPECT_TRUE(IsEmptyCell(row, "maximumX"));
    EXPECT_TRUE(IsEmptyCell(row, "density"));
}

TEST_F(LasRowTest, ExtraBytesTellTheirPlaceInThePoints) {
    const auto descriptor = [](const std::string& name) {
        return std::string(2, '\0') + '\3' + '\0' + name + std::string(188 - name.size(), '\0');
    };
    const LasRow row = Inspect(LasBuilder(12, 1)
                                   .AddPoints(1)
                                   .AddVlr("LASF_Spec", 4, descriptor("a"))
                                   .AddVlr("LASF_Spec", 4, descriptor("b")));
    EXPECT_EQ(Shown(row, "extraBytes"), L"a, b");
    EXPECT_EQ(ColumnNamed(LasColumns(), "extraBytes").look.tooltip(row),
              L"a: uint16 at offset 0\nb: uint16 at offset 2");
}

TEST_F(LasRowTest, DatesAreCheckedBeforeTheyAreComputed) {
    const struct {
        std::uint16_t day;
        std::uint16_t year;
        const wchar_t* expected;
    } cases[] = {{1, 2023, L"2023-01-01"},
                 {365, 2023, L"2023-12-31"},
                 {366, 2024, L"2024-12-31"},
                 {0, 2023, L"2023"},
                 {0, 0, L""},
                 {366, 2023, L"day 366 of 2023"},
                 {5, 0, L"day 5 of 0"},
                 {12, 40000, L"day 12 of 40000"}};
    for (const auto& c : cases) {
        EXPECT_EQ(Shown(Inspect(LasBuilder(12, 0).AddPoints(1).CreationDate(c.day, c.year)), "created"),
                  c.expected);
    }
}

TEST_F(LasRowTest, AFileThatCannotBeReadShowsItsNameAndWhy) {
    LasRow row = InspectLasFile(folder_.Write(L"bad.las", "nothing"));
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

}  // namespace
}  // namespace orvex
