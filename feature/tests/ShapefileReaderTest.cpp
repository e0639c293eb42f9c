// Shapefiles as they should be, and as they are found: without sidecars, cut off, with sidecars of others.
#include "feature/ShapefileReader.h"

#include <gmock/gmock.h>

#include <algorithm>

#include "feature/testing/TestShapefile.h"
#include "support/LDataError.h"
#include "support/Text.h"
#include "support/testing/Bytes.h"

namespace orvex {
namespace {

using testing::Bytes;
using ::testing::ElementsAre;
using testing::TemporaryFolder;
using testing::TestShapefile;
using Codes = std::vector<std::string>;

Codes CodesOf(const std::vector<Finding>& findings) {
    Codes codes;
    for (const Finding& finding : findings) {
        codes.emplace_back(finding.code);
    }
    return codes;
}

/// The bytes with others in their place.
std::string With(std::string bytes, std::size_t at, const std::string& others) {
    return bytes.replace(at, others.size(), others);
}

TEST(ShapefileReader, ReadsHeadersAndFields) {
    const TemporaryFolder folder;
    TestShapefile file;
    file.fields = {{"TEXT"},          {"REAL", 'N', 12, 3},  {"COUNT", 'N', 9},        {"LONG", 'N', 18},
                   {"HUGE", 'N', 19}, {"FLOAT", 'F', 13, 6}, {"DAY", 'D', 8},          {"YES", 'L', 1},
                   {"MEMO", 'M', 10}, {"", 'C', 5},          {"ELEVENCHARS", 'C', 254}};
    const ShapefileContent content = ReadShapefile(file.Write(folder, L"a"));
    EXPECT_EQ(content.shapeCount, 3U);
    EXPECT_EQ(content.shapeType, 1);
    EXPECT_THAT(content.extent, ElementsAre(7, 50, 9, 52));
    EXPECT_EQ(CodesOf(content.findings), Codes());
    using enum AttributeType;
    const std::vector<std::pair<std::wstring, AttributeType>> expected{
        {L"TEXT", String},  {L"REAL", Double},  {L"COUNT", Integer},     {L"LONG", Integer},
        {L"HUGE", Double},  {L"FLOAT", Double}, {L"DAY", Date},          {L"YES", Logical},
        {L"MEMO", Invalid}, {L"", String},      {L"ELEVENCHARS", String}};
    std::vector<std::pair<std::wstring, AttributeType>> fields;
    for (const AttributeField& field : content.fields) {
        fields.emplace_back(field.name, field.type);
    }
    EXPECT_EQ(fields, expected);
}

TEST(ShapefileReader, SidecarsThatLackOrContradictAreReportedAndNotTrusted) {
    const TestShapefile good;
    const std::string shp = good.Shp();
    const std::string shx = good.Shx();
    const std::string dbf = good.Dbf();
    TestShapefile other;  // more shapes, and another type
    other.type = 8;
    other.points.resize(5, {1, 1});
    const std::string cutShp = shp.substr(0, shp.size() - 5);
    const std::string otherIndex = With(shx, 100 + 4, Bytes(std::uint32_t{0x0B000000}));
    const struct {
        const char* what;
        std::string shp, shx, dbf;  ///< empty: missing
        std::uint64_t count;
        Codes codes;
    } cases[] = {
        {"all is well", shp, shx, dbf, 3, {}},
        {"no index", shp, "", dbf, 3, {"shape-index-missing"}},
        {"no table", shp, shx, "", 3, {"attributes-missing"}},
        {"nothing but shapes", shp, "", "", 3, {"shape-index-missing", "attributes-missing"}},
        {"index of one shape less", shp, shx.substr(0, shx.size() - 8), dbf, 3, {"shape-index-cut-off"}},
        {"index cut off in its header", shp, shx.substr(0, 40), dbf, 3, {"shape-index-unreadable"}},
        {"index is a text", shp, "not an index, but long enough", dbf, 3, {"shape-index-unreadable"}},
        {"index of another file", shp, other.Shx(), dbf, 3, {"shape-index-contradicts"}},
        {"index with a wrong length", shp, otherIndex, dbf, 3, {"shape-index-contradicts"}},
        {"index that points before the shapes",
         shp,
         With(shx, 100, std::string(3, '\0') + '\x01'),
         dbf,
         3,
         {"shape-index-contradicts"}},
        {"a deleted shape", shp, With(shx, 108, std::string(8, '\0')), dbf, 3, {}},
        {"a shape of another type",
         With(shp, 100 + 28 + 8, Bytes(std::int32_t{8})),
         shx,
         dbf,
         3,
         {"shape-types-mixed"}},
        {"a null shape", With(shp, 100 + 28 + 8, Bytes(std::int32_t{0})), shx, dbf, 3, {}},
        {"shapes cut off", cutShp, shx, dbf, 3, {"shapes-cut-off"}},
        {"shapes cut off, no index",
         cutShp,
         "",
         dbf,
         2,
         {"shapes-cut-off", "shape-index-missing", "attributes-count"}},
        {"a shape with a length that cannot be",
         With(shp, 100 + 28 + 4, std::string(4, '\xFF')),
         "",
         dbf,
         1,
         {"shape-index-missing", "shapes-damaged", "attributes-count"}},
        {"a shape of no length",
         With(shp, 100 + 28 + 4, std::string(4, '\0')),
         "",
         dbf,
         1,
         {"shape-index-missing", "shapes-damaged", "attributes-count"}},
        {"table of another file", shp, shx, other.Dbf(), 3, {"attributes-count"}},
        {"table cut off in its records", shp, shx, dbf.substr(0, dbf.size() - 40), 3, {"attributes-cut-off"}},
        {"table cut off in its header", shp, shx, dbf.substr(0, 50), 3, {"attributes-unreadable"}},
        {"table of zeros", shp, shx, std::string(500, '\0'), 3, {"attributes-unreadable"}},
        {"table with short records",
         shp,
         shx,
         With(dbf, 10, Bytes(std::uint16_t{5})),
         3,
         {"attributes-contradict"}},
        {"table that claims much",
         shp,
         shx,
         With(dbf, 4, std::string(4, '\xFF')),
         3,
         {"attributes-cut-off", "attributes-count"}},
    };
    for (const auto& c : cases) {
        const TemporaryFolder folder;
        const std::wstring path = folder.Write(L"a.shp", c.shp);
        if (!c.shx.empty()) {
            folder.Write(L"a.shx", c.shx);
        }
        if (!c.dbf.empty()) {
            folder.Write(L"a.dbf", c.dbf);
        }
        const ShapefileContent content = ReadShapefile(path);
        EXPECT_EQ(content.shapeCount, c.count) << c.what;
        EXPECT_EQ(CodesOf(content.findings), c.codes) << c.what;
    }
}

TEST(ShapefileReader, SidecarsAreFoundInAnyLetterCase) {
    const TestShapefile file;
    for (const auto& [shp, shx, dbf] :
         std::vector<std::array<std::wstring, 3>>{{L"a.shp", L"a.SHX", L"a.DBF"},
                                                  {L"A.SHP", L"A.Shx", L"a.dBf"},
                                                  {L"a.Shp", L"A.SHX", L"a.dbf"}}) {
        const TemporaryFolder folder;
        folder.Write(shx, file.Shx());
        folder.Write(dbf, file.Dbf());
        folder.Write(L"ab.shx", "of another file");
        EXPECT_EQ(CodesOf(ReadShapefile(folder.Write(shp, file.Shp())).findings), Codes()) << ToUtf8(shp);
    }
}

TEST(ShapefileReader, RefusesWhatIsNoShapefile) {
    const TemporaryFolder folder;
    const std::string shp = TestShapefile().Shp();
    const struct {
        std::string bytes;
        StringId reason;
    } cases[] = {
        {"", text::kRasterFileEmpty},
        {std::string(500, 'x'), text::kShapefileStartWrong},
        {shp.substr(0, 99), text::kShapefileHeaderCutOff},
        {shp.substr(0, 2), text::kShapefileStartWrong},
        {With(shp, 32, Bytes(std::int32_t{7})), text::kShapefileTypeUnknown},
        {With(shp, 32, Bytes(std::int32_t{-1})), text::kShapefileTypeUnknown},
    };
    const auto reasonOf = [](const std::wstring& path) {
        try {
            ReadShapefile(path);
        } catch (const LDataError& error) {
            return error.Text();
        }
        return std::wstring(L"was read");
    };
    for (const auto& c : cases) {
        const std::wstring expected = Text(c.reason);
        EXPECT_EQ(reasonOf(folder.Write(L"a.shp", c.bytes)).substr(0, 30), expected.substr(0, 30));
    }
    EXPECT_EQ(reasonOf(folder.Name(L"none.shp")), Text(text::kFileMissing));
    folder.Write(L"folder.shp/a.txt", "");
    EXPECT_EQ(reasonOf(folder.Name(L"folder.shp")), Text(text::kRasterIsFolder));
}

TEST(ShapefileReader, NamesOfFieldsAreInTheEncodingThatIsStated) {
    const struct {
        const char* bytes;
        std::uint8_t driver;
        const char* cpg;  ///< null: no such file
        const wchar_t* name;
        Codes codes;
    } cases[] = {
        {"GR\xC3\x96SSE", 0, "UTF-8", L"GR\u00D6SSE", {}},
        {"GR\xC3\x96SSE", 3, "utf8\r\n", L"GR\u00D6SSE", {}},
        {"GR\xC3\x96SSE", 0, nullptr, L"GR\u00D6SSE", {}},
        {"GR\xD6SSE", 0, nullptr, L"GR\u00D6SSE", {}},
        {"GR\xD6SSE", 87, nullptr, L"GR\u00D6SSE", {}},
        {"GR\xD6SSE", 0, "ISO 88591", L"GR\u00D6SSE", {}},
        {"GR\xD6SSE", 0, "8859_1", L"GR\u00D6SSE", {}},
        {"GR\x99SSE", 1, nullptr, L"GR\u00D6SSE", {}},
        {"GR\xD6SSE", 1, "ANSI 1252", L"GR\u00D6SSE", {}},
        {"\xC8\xCC\xDF", 201, nullptr, L"\u0418\u041C\u042F", {}},
        {"\x8B\xE6", 0, "932", L"\u533A", {}},
        {"ASCII", 0, "no such encoding", L"ASCII", {}},
        {"GR\xD6SSE", 0, "no such encoding", nullptr, {"attributes-encoding-unknown"}},
    };
    for (const auto& c : cases) {
        const TemporaryFolder folder;
        TestShapefile file;
        file.fields = {{c.bytes}};
        file.languageDriver = c.driver;
        if (c.cpg != nullptr) {
            folder.Write(L"a.cpg", c.cpg);
        }
        const ShapefileContent content = ReadShapefile(file.Write(folder, L"a"));
        if (c.name != nullptr) {
            EXPECT_EQ(ToUtf8(content.fields.at(0).name), ToUtf8(c.name)) << (c.cpg ? c.cpg : "no .cpg");
        }
        EXPECT_EQ(CodesOf(content.findings), c.codes) << (c.cpg ? c.cpg : "no .cpg");
    }
}

// Each of these shapes takes a read of its own, and there are more than the limit allows.
TEST(ShapefileReader, CountsALargeFileAsFarAsTheLimit) {
    const TemporaryFolder folder;
    constexpr std::uint16_t kContent = 4092;
    std::string shape = Bytes(std::uint32_t{0}, std::uint32_t{kContent / 2}, std::int32_t{1});
    std::reverse(shape.begin() + 4, shape.begin() + 8);
    shape.resize(8 + kContent);
    std::string bytes = TestShapefile().Shp().substr(0, 100);
    for (int i = 0; i < 9000; ++i) {
        bytes += shape;
    }
    const ShapefileContent content = ReadShapefile(folder.Write(L"a.shp", bytes));
    EXPECT_EQ(content.shapeCount, 8192U);
    EXPECT_EQ(CodesOf(content.findings),
              (Codes{"shape-index-missing", "shapes-not-all-counted", "attributes-missing"}));
}

// No byte of a file is relied upon: whatever one of them becomes, reading ends, and soon.
TEST(ShapefileReader, TakesAnyByteForAnyOther) {
    const TemporaryFolder folder;
    const TestShapefile file;
    const std::wstring path = file.Write(folder, L"a");
    const std::pair<std::wstring, std::string> files[] = {
        {path, file.Shp()}, {folder.Name(L"a.shx"), file.Shx()}, {folder.Name(L"a.dbf"), file.Dbf()}};
    for (const auto& [name, bytes] : files) {
        for (std::size_t at = 0; at < bytes.size(); ++at) {
            for (const char other : {'\0', '\x7F', '\xFF'}) {
                testing::WriteAt(name, at, std::string(1, other));
                try {
                    const ShapefileContent content = ReadShapefile(path);
                    EXPECT_LE(content.shapeCount, 14U) << at;
                    EXPECT_LE(content.fields.size(), 4U) << at;
                } catch (const LDataError&) {
                    EXPECT_EQ(name, path) << "a sidecar is no reason to refuse a file";
                }
            }
            testing::WriteAt(name, at, bytes.substr(at, 1));
        }
    }
}

}  // namespace
}  // namespace orvex
