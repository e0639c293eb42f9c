// The command orvex-inspect: its JSON, CSV and table, its arguments, and gdalinfo beside it.
#include <gmock/gmock.h>

#include <filesystem>
#include <map>
#include <nlohmann/json.hpp>
#include <regex>
#include <sstream>

#include "host/inspect/InspectCommand.h"
#include "host/inspect/OrderedJobs.h"
#include "host/inspect/ReportWriter.h"
#include "las/testing/LasBuilder.h"
#include "raster/testing/GeoTiff.h"
#include "support/Text.h"
#include "support/testing/TemporaryFolder.h"

namespace orvex {
namespace {

using ::testing::ElementsAre;
using testing::GeoTiff;
using ::testing::HasSubstr;
using testing::LasBuilder;
using ::testing::Not;
using ::testing::StartsWith;
using testing::TemporaryFolder;
using Json = nlohmann::ordered_json;
using Arguments = std::vector<std::wstring>;

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
constexpr const char* kWkt =
    "GEOGCS[\"WGS 84\",DATUM[\"WGS_1984\",SPHEROID[\"WGS "
    "84\",6378137,298.257223563]],PRIMEM[\"Greenwich\",0],"
    "UNIT[\"degree\",0.0174532925199433],AUTHORITY[\"EPSG\",\"4326\"]]";

struct Outcome {
    int code;
    std::string out;
    std::string err;
};

Outcome Inspect(const Arguments& arguments, bool stop = false) {
    std::ostringstream out;
    std::ostringstream err;
    const int code = RunInspectCommand(arguments, {out, err, false, [stop] { return stop; }});
    return {code, out.str(), err.str()};
}

/// The command's JSON; its objects in order.
Json Objects(Arguments arguments) {
    arguments.insert(arguments.begin(), L"--json");
    const Outcome outcome = Inspect(arguments);
    EXPECT_EQ(outcome.code, kInspectOk) << outcome.err;
    return Json::parse(outcome.out);
}

std::vector<std::string> Keys(const Json& object) {
    std::vector<std::string> keys;
    for (const auto& [key, value] : object.items()) {
        keys.push_back(key);
    }
    return keys;
}

/// Expects members by their paths.
void ExpectMembers(const Json& object, const std::vector<std::pair<std::string, Json>>& members) {
    for (const auto& [path, value] : members) {
        const Json::json_pointer pointer(path);
        EXPECT_EQ(object.contains(pointer) ? object.at(pointer) : "missing", value) << path;
    }
}

std::string Printed(ReportFormat format, const FileReport& report) {
    std::ostringstream out;
    const auto writer = MakeReportWriter(format, out);
    writer->Write(report);
    writer->Finish();
    return out.str();
}

GeoTiff Heights(double nodata) {
    GeoTiff tiff;
    tiff.type = GDT_Float32;
    tiff.options = {"COMPRESS=LZW", "BIGTIFF=YES"};
    tiff.change = [nodata](GDALDatasetH dataset) {
        GDALSetRasterNoDataValue(GDALGetRasterBand(dataset, 1), nodata);
    };
    return tiff;
}

TEST(InspectJson, HasTheFactsOfALasFileUnderTheirKeys) {
    const TemporaryFolder folder;
    const std::string bytes = LasBuilder(14, 6)
                                  .AddPoints(4, 10, 50)
                                  .Wkt(kWkt)
                                  .AddVlr("vendor", 7, "12345678", "eight bytes")
                                  .AddEvlr("vendor", 8, "data", "behind")
                                  .AddEvlr("\xFF\xFE", 9, "", "\x80")
                                  .AddExtraBytes("Amplitude", 3, 2)
                                  .AddExtraBytes("Width", 5, 4)
                                  .EncodingBits(1)
                                  .Lie(179, kNaN)
                                  .Build();
    const std::wstring path = folder.Write(L"Größe '1'.LAS", bytes);
    const Json object = Objects({path}).at(0);
    EXPECT_THAT(Keys(object),
                ElementsAre("path", "kind", "loadable", "summary", "findings", "crs", "las", "raster"));
    EXPECT_THAT(Keys(object["crs"]),
                ElementsAre("name", "isGeographic", "linearUnits", "angularUnits", "epsg", "prettyWkt"));
    EXPECT_THAT(
        Keys(object["las"]),
        ElementsAre("version", "versionCode", "pointFormat", "compressed", "headerSize", "offsetToPoints",
                    "pointRecordLength", "pointCount", "scale", "offset", "min", "max", "globalEncoding",
                    "gpsTime", "vlrs", "evlrs", "extraBytes", "companionStatus", "vlrText"));
    ExpectMembers(
        object,
        {{"/path", ToUtf8(path)},
         {"/kind", "las"},
         {"/loadable", true},
         {"/raster", nullptr},
         {"/crs/name", "WGS 84"},
         {"/crs/isGeographic", true},
         {"/crs/epsg", 4326},
         {"/las/version", "1.4"},
         {"/las/versionCode", 5},
         {"/las/pointFormat", 6},
         {"/las/pointRecordLength", 30 + 6},
         {"/las/pointCount", 4},
         {"/las/globalEncoding", 17},
         {"/las/min/0", 10},
         {"/las/max/0", nullptr},
         {"/las/evlrs/0", {{"userId", "vendor"}, {"recordId", 8}, {"length", 4}, {"description", "behind"}}},
         {"/las/evlrs/1/userId", "\xEF\xBF\xBD\xEF\xBF\xBD"},
         {"/las/extraBytes/1", {{"name", "Width"}, {"offset", 2}, {"size", 4}}}});
    EXPECT_THAT(object["las"]["vlrText"].get<std::string>(), HasSubstr("31 32 33 34 35 36 37 38"));
}

TEST(InspectJson, HasTheFactsOfARaster) {
    const TemporaryFolder folder;
    const Json object = Objects({Heights(-9999).Write(folder, L"Gr\u00f6\u00dfe.TIF")}).at(0);
    ExpectMembers(object, {{"/kind", "raster"},
                           {"/loadable", true},
                           {"/las", nullptr},
                           {"/crs/epsg", 32633},
                           {"/raster/driver", "GTiff"},
                           {"/raster/width", 20},
                           {"/raster/height", 10},
                           {"/raster/bands", 1},
                           {"/raster/dataType", "Float32"},
                           {"/raster/pixelSize", {0.5, 0.5}},
                           {"/raster/extent", {500000, 5299995, 500010, 5300000}},
                           {"/raster/unit", "Meters"},
                           {"/raster/bigTiff", true},
                           {"/raster/compression", "LZW"},
                           {"/raster/overviews", 0},
                           {"/raster/nodata", -9999},
                           {"/raster/kind", 1}});
    EXPECT_EQ(object["raster"]["bandDetails"].size(), 1U);
}

TEST(InspectJson, HasNullsForWhatIsNotThere) {
    const TemporaryFolder folder;
    GeoTiff bare;
    bare.transform.reset();
    bare.crs = "";
    const Json objects = Objects({bare.Write(folder, L"a.tif"), Heights(kNaN).Write(folder, L"b.tif"),
                                  folder.Write(L"c.tif", "no raster"), folder.Write(L"d.las", "LASF"),
                                  folder.Write(L"e.txt", "text")});
    ExpectMembers(objects[0], {{"/raster/extent", nullptr},
                               {"/raster/nodata", nullptr},
                               {"/raster/transform", nullptr},
                               {"/raster/pixelSize", {0, 0}}});
    ExpectMembers(objects[1], {{"/raster/nodata", "nan"}});
    for (const std::size_t unreadable : {2U, 3U, 4U}) {
        ExpectMembers(objects[unreadable],
                      {{"/loadable", false}, {"/crs", nullptr}, {"/las", nullptr}, {"/raster", nullptr}});
        EXPECT_NE(objects[unreadable]["summary"], "");
    }
    ExpectMembers(objects, {{"/2/kind", "raster"}, {"/3/kind", "las"}, {"/4/kind", "unknown"}});
}

// Scripts compare it as text.
TEST(InspectJson, KeepsItsLayout) {
    FileReport report;
    report.path = L"a\"b\\c\r\n\t\b\f\x01\x7F";
    report.kind = "raster";
    report.summary = L"Gr\u00f6\u00dfe";
    report.raster.emplace().file = std::make_unique<RasterFile>();
    RasterProperties& properties = report.raster->file->properties;
    properties.pixelWidth = 0.1;
    properties.pixelHeight = 2;
    properties.extent = {{-1e300, 1e-8, kNaN, 123456789.012345}};
    properties.totalBytes = std::numeric_limits<std::uint64_t>::max();
    const std::string text = Printed(ReportFormat::Json, report);
    EXPECT_THAT(text, StartsWith("[\n  {\n"
                                 R"(    "path": "a\"b\\c\r\n\t\u0008\u000c\u0001\u007f",)"
                                 "\n    \"kind\": \"raster\",\n    \"loadable\": false,\n"
                                 "    \"summary\": \"Gr\xC3\xB6\xC3\x9F"
                                 "e\",\n    \"findings\": [],\n    \"crs\": null,\n    \"las\": null,\n"
                                 "    \"raster\": {\n      \"driver\": \"\",\n"));
    EXPECT_THAT(text, HasSubstr("\n      \"pixelSize\": [0.1, 2],\n"
                                "      \"extent\": [-1e+300, 1e-08, null, 123456789.012345],\n"));
    EXPECT_THAT(text, HasSubstr("\"totalBytes\": 18446744073709551615,\n      \"bandDetails\": []\n"
                                "    }\n  }\n]\n"));
}

TEST(InspectCommand, RefusesUnknownArgumentsAndReportsMissingPaths) {
    const TemporaryFolder folder;
    const std::wstring good = folder.Write(L"good.las", LasBuilder().Build());
    const Arguments cases[] = {{},
                               {L"--xml", good},
                               {L"--jobs", L"0", good},
                               {L"--jobs", L"many", good},
                               {L"--jobs=99999999999", good},
                               {good, L"--jobs"},
                               {good, L"--as"},
                               {good, L"--as="},
                               {good, L"--as=photo"}};
    for (const Arguments& arguments : cases) {
        const Outcome outcome = Inspect(arguments);
        EXPECT_EQ(outcome.code, kInspectUsage);
        EXPECT_NE(outcome.err, "");
        EXPECT_EQ(outcome.out, "");
    }
    EXPECT_EQ(Inspect({L"--", good}).code, kInspectOk);
    EXPECT_EQ(Inspect({L"--help"}).code, kInspectOk);

    const Outcome missing = Inspect({L"--json", folder.Name(L"none.las"), good});
    EXPECT_EQ(missing.code, kInspectPathMissing);
    EXPECT_THAT(missing.err, HasSubstr("none.las"));
    EXPECT_EQ(Json::parse(missing.out).size(), 1U) << "the others are printed";
}

TEST(InspectCommand, ReadsAFileAsTheKindOfItsNameOrOfTheOption) {
    const TemporaryFolder folder;
    const std::wstring image = GeoTiff().Write(folder, L"a.tif");
    const std::wstring grid =
        folder.Write(L"b.ASC", "ncols 2\nnrows 2\nxllcorner 10\nyllcorner 20\ncellsize 5\n1 2\n3 4\n");
    folder.Write(L"b.prj", "");
    folder.Write(L"a.tif.aux.xml", "<PAMDataset/>");
    folder.Write(L"c.las", "LASF");
    const std::wstring all = FromPath(folder.Path());
    const struct {
        Arguments arguments;
        std::vector<std::string> kinds;
    } cases[] = {{{all}, {"raster", "dem", "las"}},  // sidecars are no files of their own
                 {{L"--as", L"dem", all}, {"dem", "dem"}},
                 {{L"--as=raster", grid, image}, {"raster", "raster"}},
                 {{L"--as=las", all}, {"las"}}};
    for (const auto& c : cases) {
        std::vector<std::string> kinds;
        for (const Json& object : Objects(c.arguments)) {
            kinds.push_back(object["kind"]);
        }
        EXPECT_EQ(kinds, c.kinds) << ToUtf8(c.arguments.front());
    }
}

TEST(InspectCommand, SearchesFoldersInNaturalOrderAndKeepsItOnManyThreads) {
    const TemporaryFolder folder;
    std::vector<std::string> wanted;
    for (int i = 1; i <= 60; ++i) {
        const std::wstring name = L"sub/tile" + std::to_wstring(i) + (i % 2 == 0 ? L".LAS" : L".las");
        wanted.push_back(
            ToUtf8(folder.Write(name, LasBuilder().AddPoints(static_cast<std::size_t>(i)).Build())));
    }
    folder.Write(L"sub/notes.txt", "no LAS");
    const Json objects = Objects({L"--jobs", L"4", FromPath(folder.Path())});
    ASSERT_EQ(objects.size(), wanted.size());
    for (std::size_t i = 0; i < wanted.size(); ++i) {
        ExpectMembers(objects[i], {{"/path", wanted[i]}, {"/las/pointCount", i + 1}});
    }
}

/// A full drive.
class RefusingBuffer : public std::streambuf {};

TEST(InspectCommand, StopsWithACompleteDocumentAndReportsAFullDrive) {
    const TemporaryFolder folder;
    const std::wstring good = folder.Write(L"good.las", LasBuilder().AddPoints(1).Build());
    const Outcome stopped = Inspect({L"--json", good}, true);
    EXPECT_EQ(stopped.code, kInspectStopped);
    EXPECT_EQ(stopped.out, "[]\n");

    RefusingBuffer refusing;
    std::ostream full(&refusing);
    std::ostringstream err;
    EXPECT_EQ(RunInspectCommand({good}, {full, err}), kInspectFailed);
    EXPECT_EQ(err.str(), ToUtf8(Text(text::kInspectWriteFailed)) + '\n');
}

/// The fields of a CSV text's second line by their names in the first, for texts without quoted fields.
std::map<std::string, std::string> CsvFields(const std::string& csv) {
    std::istringstream lines(csv);
    std::string names;
    std::string values;
    std::getline(lines, names);
    std::getline(lines, values);
    std::istringstream nameFields(names.substr(0, names.size() - 1));
    std::istringstream valueFields(values.substr(0, values.size() - 1) + ",");
    std::map<std::string, std::string> fields;
    std::string value;
    for (std::string name; std::getline(nameFields, name, ',');) {
        EXPECT_TRUE(std::getline(valueFields, value, ',')) << name;
        fields[name] = value;
    }
    EXPECT_FALSE(std::getline(valueFields, value, ',')) << "more values than names";
    return fields;
}

TEST(InspectCsv, PrintsTheColumnsOfThePages) {
    const TemporaryFolder folder;
    FileReport report = InspectFile(folder.Write(L"a.las", LasBuilder().AddPoints(3).Build()));
    report.path = L"a, \"b\".las";
    const std::string quoted = Printed(ReportFormat::Csv, report);
    EXPECT_THAT(quoted, StartsWith("path,kind,loadable,summary,findings,"));
    EXPECT_THAT(quoted, HasSubstr("\r\n\"a, \"\"b\"\".las\",las,true,"));
    EXPECT_TRUE(quoted.ends_with("\r\n"));

    const std::string raster = Inspect({L"--csv", Heights(-9999).Write(folder, L"a.tif")}).out;
    // What stands in several lines is quoted: the findings and the WKT.
    const std::string plain = std::regex_replace(raster, std::regex("\"[^\"]*(\"\"[^\"]*)*\""), "");
    const auto fields = CsvFields(plain);
    const std::pair<const char*, const char*> wanted[] = {
        {"kind", "raster"},     {"fileName", "a.tif"},   {"minimumX", "500000"},   {"minimumY", "5299995"},
        {"maximumX", "500010"}, {"maximumY", "5300000"}, {"width", "20"},          {"height", "10"},
        {"bands", "1"},         {"pixelSize", "0.5"},    {"linearUnit", "Meters"}, {"bigTiff", "True"},
        {"points", ""},
    };
    for (const auto& [name, value] : wanted) {
        ASSERT_TRUE(fields.contains(name)) << name;
        EXPECT_EQ(fields.at(name), value) << name;
    }
    EXPECT_FALSE(fields.contains("details")) << "hidden columns are not printed";
}

std::u32string Characters(const std::string& utf8) {
    return std::filesystem::path(std::u8string(utf8.begin(), utf8.end())).u32string();
}

TEST(InspectTable, AlignsItsColumnsAndLeavesOutEmptyOnes) {
    const TemporaryFolder folder;
    folder.Write(L"a.las", LasBuilder().AddPoints(3).Build());
    folder.Write(L"long \U0001F600 name.las", LasBuilder(14, 6).AddPoints(1234).Build());
    folder.Write(L"broken.las", "no");
    std::istringstream lines(Inspect({FromPath(folder.Path())}).out);
    std::vector<std::u32string> rest;  // a name's characters and bytes differ in number
    for (std::string line; std::getline(lines, line);) {
        rest.push_back(Characters(line));
    }
    ASSERT_EQ(rest.size(), 5U);
    const std::size_t end = rest[0].find(U"Points") + 6;
    EXPECT_EQ(rest[2].substr(end - 1, 3), U"3  ");
    EXPECT_EQ(rest[4].substr(end - 4, 6), U"1234  ");

    const std::string raster = Inspect({Heights(-9999).Write(folder, L"a.tif")}).out;
    EXPECT_THAT(raster, HasSubstr("0.50000000 x 0.50000000  Meters"));
    EXPECT_THAT(raster, HasSubstr("20 x 10"));
    EXPECT_THAT(raster, Not(HasSubstr("Points")));
}

std::vector<GeoTiff> VariedRasters() {
    std::vector<GeoTiff> files;
    for (const GDALDataType type : {GDT_Byte, GDT_UInt16, GDT_Int16, GDT_UInt32, GDT_Int32, GDT_Float32,
                                    GDT_Float64, GDT_CInt16, GDT_CFloat32}) {
        files.emplace_back().type = type;
    }
    files.emplace_back().transform = {{100, 3, 4, 200, 4, -3}};
    files.emplace_back().transform = {{0, 1, 0, 0, 0, 1}};
    files.emplace_back().transform.reset();
    for (const char* crs : {"EPSG:4326", "EPSG:2263", "EPSG:3857", "EPSG:31468", "", "EPSG:32633+5773",
                            "+proj=laea +lat_0=50 +lon_0=10 +ellps=GRS80"}) {
        files.emplace_back().crs = crs;
    }
    files.emplace_back().bands = 7;
    files.emplace_back().options = {"BIGTIFF=YES", "ENDIANNESS=BIG", "TILED=YES"};
    files.emplace_back() = Heights(-32768);
    return files;
}

/// JSON of the program gdalinfo for a file.
Json Gdalinfo(const TemporaryFolder& folder, const std::wstring& path) {
    const std::wstring output = folder.Name(L"gdalinfo.json");
    const std::string command =
        std::string(ORVEX_GDALINFO) + " -json \"" + ToUtf8(path) + "\" >\"" + ToUtf8(output) + "\"";
    EXPECT_EQ(std::system(command.c_str()), 0);
    return Json::parse(testing::ReadFile(output));
}

TEST(InspectRaster, AgreesWithGdalinfo) {
    if (std::string(ORVEX_GDALINFO).empty()) {
        GTEST_SKIP() << "there is no program gdalinfo for this platform";
    }
    const TemporaryFolder folder;
    int number = 0;
    for (const GeoTiff& file : VariedRasters()) {
        const std::wstring path = file.Write(folder, std::to_wstring(++number) + L".tif");
        const Json object = Objects({path}).at(0);
        const Json& ours = object["raster"];
        const Json theirs = Gdalinfo(folder, path);
        EXPECT_EQ(theirs["size"], Json({ours["width"], ours["height"]})) << number;
        EXPECT_EQ(theirs.value("geoTransform", Json()), ours["transform"]) << number;
        EXPECT_EQ(theirs["bands"].size(), ours["bands"]) << number;
        EXPECT_EQ(theirs["bands"][0]["type"], ours["dataType"]) << number;
        const std::string wkt = theirs.value(Json::json_pointer("/coordinateSystem/wkt"), "");
        const std::string name = object["crs"]["name"];
        EXPECT_THAT(wkt, HasSubstr(name.empty() ? name : '"' + name + '"')) << number;
        EXPECT_EQ(wkt.empty(), object["crs"]["prettyWkt"] == "") << number;
    }
}

TEST(OrderedJobs, HoldsOnlyAWindowOfResults) {
    std::atomic<std::size_t> started{0};
    std::size_t furthest = 0;
    OrderedJobs<std::size_t> jobs(1000, 4, [&](std::size_t i) {
        ++started;
        return i;
    });
    std::size_t taken = 0;
    const bool complete = jobs.Run(
        [&](std::size_t i, std::size_t&& result) {
            EXPECT_EQ(i, result);
            furthest = std::max(furthest, started.load() - taken);
            ++taken;
            return true;
        },
        [] { return false; });
    EXPECT_TRUE(complete);
    EXPECT_EQ(taken, 1000U);
    EXPECT_LE(furthest, 8U * 4U + 4U);
}

}  // namespace
}  // namespace orvex
