#include "feature/FeatureRow.h"

#include <gmock/gmock.h>

#include "feature/testing/TestShapefile.h"
#include "orvexcommon/OrvexUtilities.h"
#include "support/Format.h"
#include "support/Text.h"

namespace orvex {
namespace {

using testing::TemporaryFolder;
using testing::TestShapefile;
using Codes = std::vector<std::string>;

Codes CodesOf(const FeatureRow& row) {
    Codes codes;
    for (const Finding& finding : row.findings) {
        codes.emplace_back(finding.code);
    }
    return codes;
}

std::vector<std::wstring> Names(const FeatureRow& row) {
    std::vector<std::wstring> names;
    for (const FeatureField& field : row.fields) {
        names.push_back(field.name + L" " + field.type);
    }
    return names;
}

/// A shapefile object that knows the essentials, and fails where it is told to.
class ScriptedShapefile final : public OrvexShapefile {
  public:
    std::int32_t openResult = kHostOk;
    std::int32_t countResult = kHostOk;
    std::int32_t extentResult = kHostOk;
    std::int32_t fieldCount = 4;
    std::int32_t brokenField = -1;

    std::int32_t Open(const std::wstring&, std::wstring& reason) override {
        reason = openResult == kHostOk ? L"" : L"The drive is gone.";
        return openResult;
    }
    std::int32_t GetShapeCount(std::int32_t& count) override { return count = 1'000'000, countResult; }
    std::int32_t GetShapeType(std::int32_t& type) override { return type = 5, kHostOk; }
    std::int32_t GetExtent(std::array<double, 4>& extent) override {
        extent = {1, 2, 3, 4};
        return extentResult;
    }
    std::int32_t GetFieldCount(std::int32_t& count) override { return count = fieldCount, kHostOk; }
    std::int32_t GetFieldInfo(std::int32_t index, std::wstring& name, std::int32_t& type) override {
        name = index == 1 ? L"" : L"F" + std::to_wstring(index);
        type = index == 2 ? 77 : index;
        return index == brokenField ? kHostFail : kHostOk;
    }
};

ShapefileMaker Making(const ScriptedShapefile& script) {
    return [script](std::int32_t& result) {
        result = kHostOk;
        return std::make_unique<ScriptedShapefile>(script);
    };
}

TEST(FeatureRow, AShapefileIsReadByTheHostsObjectAndCheckedByOurReader) {
    const TemporaryFolder folder;
    const std::wstring path = folder.Write(L"a.shp", TestShapefile().Shp());
    const FeatureRow row = InspectFeatureFile(path, Making({}));
    EXPECT_TRUE(row.loadable);
    EXPECT_EQ(row.featureCount, 1'000'000U);
    EXPECT_EQ(row.geometry, OrvexUtilities::OrvexGeometryToString(5));
    EXPECT_EQ(row.extent, (std::array<double, 4>{1, 2, 3, 4}));
    EXPECT_EQ(row.fieldCount, 4);
    EXPECT_EQ(Names(row), (std::vector<std::wstring>{L"F0 Double", L"F3 Date"}))
        << "no name, no known type: no field";
    EXPECT_EQ(CodesOf(row), (Codes{"shape-index-missing", "attributes-missing", "no-crs"}));

    ScriptedShapefile odd;
    odd.extentResult = kHostFail;
    odd.fieldCount = -3;
    const FeatureRow bare = InspectFeatureFile(folder.Name(L"not there.shp"), Making(odd));
    EXPECT_TRUE(bare.loadable) << "the host knows it";
    EXPECT_EQ(bare.extent, std::nullopt);
    EXPECT_EQ(bare.fieldCount, 0);
}

TEST(FeatureRow, FailuresOfTheHostsObjectAreToldInTheirWords) {
    const TemporaryFolder folder;
    const std::wstring path = TestShapefile().Write(folder, L"a");
    ScriptedShapefile refusing;
    refusing.openResult = kHostFail;
    ScriptedShapefile countless;
    countless.countResult = kHostFail;
    ScriptedShapefile broken;
    broken.brokenField = 0;
    const auto failing = [](std::int32_t code) -> ShapefileMaker {
        return [code](std::int32_t& result) {
            result = code;
            return std::unique_ptr<OrvexShapefile>();
        };
    };
    const std::wstring notOpened = Text(text::kShapefileNotOpened);
    const struct {
        ShapefileMaker maker;
        std::wstring summary;
        std::wstring finding;
    } cases[] = {
        {failing(kHostFail), Text(text::kShapefileNotCreated),
         FormatText(Text(text::kShapefileObjectFailed), {std::uint32_t{0x80004005}})},
        {Making(refusing), notOpened, L"The drive is gone."},
        {Making(countless), notOpened, notOpened},
        {Making(broken), Text(text::kShapefileFieldNotRead), Text(text::kShapefileFieldNotRead)},
    };
    for (const auto& c : cases) {
        const FeatureRow row = InspectFeatureFile(path, c.maker);
        EXPECT_FALSE(row.loadable);
        EXPECT_EQ(row.summary, c.summary);
        ASSERT_FALSE(row.findings.empty());
        EXPECT_EQ(row.findings[0].text, c.finding);
        EXPECT_EQ(LoadFlagOf(row), LoadFlag::NotLoadable);
    }
    EXPECT_EQ(Names(InspectFeatureFile(path, Making(broken))), (std::vector<std::wstring>{L"F3 Date"}))
        << "the others are there";
    EXPECT_TRUE(InspectFeatureFile(path, failing(kHostClassNotRegistered)).loadable)
        << "we read it ourselves";
}

TEST(FeatureRow, AShapefileThatCannotBeReadSaysWhyBesideTheUsualText) {
    const TemporaryFolder folder;
    const FeatureRow row = InspectFeatureFile(folder.Write(L"a.shp", std::string(500, 'x')));
    EXPECT_FALSE(row.loadable);
    EXPECT_EQ(row.summary, L"Unable to open ShapeFile.  Invalid SHP file.");
    EXPECT_EQ(FindingLines(row.findings), Text(text::kShapefileStartWrong));
    EXPECT_NE(row.crs, nullptr);

    const FeatureRow other = InspectFeatureFile(folder.Write(L"a.txt", "text"));
    EXPECT_FALSE(other.loadable);
    EXPECT_EQ(other.summary, Text(text::kFeatureKindUnknown));
}

TEST(FeatureRow, TheCrsBesideTheFileIsReadWhateverItsLetters) {
    const std::string wkt = OrvexUtilities::CrsGetPrettyWktFromEPSG(25832);
    ASSERT_NE(wkt, "");
    const struct {
        const wchar_t* name;  ///< null: no such file
        std::string bytes;
        const wchar_t* crs;
        Codes codes;
    } cases[] = {
        {L"a.prj", wkt, L"ETRS89 / UTM zone 32N", {}},
        {L"a.PRJ", "\xEF\xBB\xBF" + wkt + "\r\n", L"ETRS89 / UTM zone 32N", {}},
        {L"A.Prj", wkt + std::string(1, '\0'), L"ETRS89 / UTM zone 32N", {}},
        {nullptr, "", L"", {"no-crs"}},
        {L"a.prj", "", L"", {"no-crs"}},
        {L"a.prj", " \r\n", L"", {"no-crs"}},
        {L"a.prj", "PROJCS[\"cut", L"", {"crs-unreadable"}},
        {L"a.prj", std::string((std::size_t{1} << 20U) + 1, ' '), L"", {"prj-unreadable", "no-crs"}},
    };
    for (const auto& c : cases) {
        const TemporaryFolder folder;
        TestShapefile file;
        file.extent = {500'000, 5'400'000, 500'100, 5'400'100};
        if (c.name != nullptr) {
            folder.Write(c.name, c.bytes);
        }
        const FeatureRow row = InspectFeatureFile(file.Write(folder, L"a"));
        EXPECT_EQ(row.crs->name, c.crs);
        EXPECT_EQ(CodesOf(row), c.codes) << c.bytes.substr(0, 20);
        EXPECT_TRUE(row.loadable);
    }
}

TEST(FeatureRow, DrawingsAndKmlFilesAreReadByTheLibrary) {
    const TemporaryFolder folder;
    const std::string line = "0\nLINE\n8\nWalls\n10\n500000\n20\n5400000\n11\n500010\n21\n5400005\n";
    const std::string left = "0\nXLINE\n8\nAxes\n10\n0\n20\n0\n11\n1\n21\n1\n";
    const auto drawing = [](const std::string& entities) {
        return "0\nSECTION\n2\nENTITIES\n" + entities + "0\nENDSEC\n0\nEOF\n";
    };
    folder.Write(L"plan.PRJ", OrvexUtilities::CrsGetPrettyWktFromEPSG(25832));
    const FeatureRow plan = InspectFeatureFile(folder.Write(L"plan.dxf", drawing(line + left)));
    EXPECT_TRUE(plan.loadable);
    EXPECT_EQ(plan.geometry, Text(text::kFeatureVarious));
    EXPECT_EQ(plan.summary, L"Layers: 1,   Features: 1");
    EXPECT_EQ(plan.layers.at(0).name, L"Walls");
    EXPECT_EQ(plan.extent, (std::array<double, 4>{500'000, 5'400'000, 500'010, 5'400'005}));
    EXPECT_EQ(plan.crs->name, L"ETRS89 / UTM zone 32N");
    EXPECT_EQ(CodesOf(plan), (Codes{"partly-read"})) << ToUtf8(FindingLines(plan.findings));

    const FeatureRow none = InspectFeatureFile(folder.Write(L"none.dxf", "no drawing"));
    EXPECT_FALSE(none.loadable);
    EXPECT_EQ(FindingLines(none.findings), none.summary);
    EXPECT_EQ(CodesOf(none), (Codes{"unreadable"}));

    const std::string place = "<Placemark><Point><coordinates>7,50</coordinates></Point></Placemark>";
    folder.Write(L"places.prj", OrvexUtilities::CrsGetPrettyWktFromEPSG(25832));
    const FeatureRow places = InspectFeatureFile(folder.Write(
        L"places.kml", "<kml xmlns=\"http://www.opengis.net/kml/2.2\"><Document><name>Places</name>" + place +
                           "</Document></kml>"));
    EXPECT_TRUE(places.loadable);
    EXPECT_EQ(places.extent, (std::array<double, 4>{7, 50, 7, 50}));
    EXPECT_EQ(places.crs, DescribeDefaultCrs()) << "whatever lies beside it";
    EXPECT_EQ(CodesOf(places), Codes());
}

TEST(FeatureRow, ExtentsThatCannotBeAreFound) {
    const double infinity = std::numeric_limits<double>::infinity();
    const struct {
        int epsg;
        std::array<double, 4> extent;
        Codes codes;
        StringId cause = {};
    } cases[] = {
        {4326, {7, 50, 9, 52}, {}},
        {4326, {9, 50, 7, 52}, {"extent-inverted"}},
        {4326, {7, 50, infinity, 52}, {"extent-not-finite"}},
        {4326, {35, 138, 36, 140}, {"extent-outside-crs"}, text::kExtentAxesSwapped},
        {4326, {30, 80, 40, 140}, {"extent-outside-crs"}, text::kExtentAxesSwapped},
        {4326, {30, 80, 140, 140}, {"extent-outside-crs"}, text::kExtentNotInDegrees},
        {25832, {5'400'000, 500'000, 5'400'100, 500'100}, {"extent-outside-crs"}, text::kExtentAxesSwapped},
        {4258, {50, 8, 51, 9}, {"extent-outside-crs"}, text::kExtentAxesSwapped},
        {4258, {-20, 30, -17, 32}, {}},
        {25832, {7, 50, 9, 52}, {"extent-outside-crs"}, text::kExtentInDegrees},
    };
    for (const auto& c : cases) {
        const TemporaryFolder folder;
        TestShapefile file;
        file.extent = c.extent;
        folder.Write(L"a.prj", OrvexUtilities::CrsGetPrettyWktFromEPSG(c.epsg));
        const FeatureRow row = InspectFeatureFile(file.Write(folder, L"a"));
        EXPECT_EQ(CodesOf(row), c.codes) << c.extent[0];
        if (c.cause.value != 0) {
            EXPECT_EQ(row.summary, FeatureSummary(row));
            EXPECT_EQ(row.findings.at(0).text, FormatText(Text(text::kExtentOutsideCrs), {Text(c.cause)}));
        }
    }
    TestShapefile empty;
    empty.points.clear();
    empty.extent = {0, 0, 0, 0};
    const TemporaryFolder folder;
    const FeatureRow row = InspectFeatureFile(empty.Write(folder, L"a"));
    EXPECT_EQ(CodesOf(row), (Codes{"no-features", "no-crs"}));
    EXPECT_EQ(row.extent, std::nullopt);
}

}  // namespace
}  // namespace orvex
