// The command orvex-inspect: its JSON, CSV and table, and its arguments.
#include <gmock/gmock.h>

#include <algorithm>
#include <filesystem>
#include <nlohmann/json.hpp>
#include <numeric>
#include <regex>
#include <sstream>
#include <system_error>

#include "feature/testing/TestShapefile.h"
#include "host/inspect/InspectCommand.h"
#include "host/inspect/OrderedJobs.h"
#include "host/inspect/ReportWriter.h"
#include "host/utilities/testing/PhotoSamples.h"
#include "las/testing/LasBuilder.h"
#include "raster/testing/GeoTiff.h"
#include "support/Text.h"
#include "support/testing/TemporaryFolder.h"

namespace orvex {
namespace {

using testing::GeoTiff;
using ::testing::HasSubstr;
using testing::LasBuilder;
using ::testing::Not;
using ::testing::StartsWith;
using testing::TemporaryFolder;
using testing::TestShapefile;
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

/// Expects members by their paths.
void ExpectMembers(const Json& object, const std::vector<std::pair<std::string, Json>>& members) {
    for (const auto& [path, value] : members) {
        const Json::json_pointer pointer(path);
        EXPECT_EQ(object.contains(pointer) ? object.at(pointer) : "missing", value) << path;
    }
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
         {"/findings/0/code", "extent-not-finite"},
         {"/findings/0/severity", "warning"},
         {"/columns/systemId", "TEST"},
         {"/columns/created", "2024-01-01"},
         {"/columns/size", static_cast<double>(bytes.size()) * 1e-6},
         {"/columns/pointsByReturn", "1: 4"},
         {"/columns/maximumX", nullptr},
         {"/las/pointsByReturn/0", 4},
         {"/las/legacyPointCount", 0},
         {"/las/copc", false},
         {"/las/extraBytes/1", {{"name", "Width"}, {"type", "uint32"}, {"offset", 2}, {"size", 4}}}});
    EXPECT_THAT(object["las"]["evlrText"].get<std::string>(), HasSubstr("= behind"));
    EXPECT_THAT(object["las"]["vlrText"].get<std::string>(), HasSubstr("31 32 33 34 35 36 37 38"));
}

TEST(InspectJson, HasTheFactsOfARasterAndNullsForWhatIsNotThere) {
    const TemporaryFolder folder;
    GeoTiff bare;
    bare.transform.reset();
    bare.crs = "";
    const Json objects = Objects({bare.Write(folder, L"a.tif"), Heights(kNaN).Write(folder, L"b.tif"),
                                  folder.Write(L"c.tif", "no raster"), folder.Write(L"d.las", "LASF"),
                                  folder.Write(L"e.txt", "text"), Heights(-9999).Write(folder, L"f.tif")});
    ExpectMembers(objects[5], {{"/kind", "raster"},
                               {"/las", nullptr},
                               {"/crs/epsg", 32633},
                               {"/raster/width", 20},
                               {"/raster/dataType", "Float32"},
                               {"/raster/pixelSize", {0.5, 0.5}},
                               {"/raster/extent", {500000, 5299995, 500010, 5300000}},
                               {"/raster/compression", "LZW"},
                               {"/raster/nodata", -9999}});
    ExpectMembers(objects[0], {{"/raster/extent", nullptr},
                               {"/raster/nodata", nullptr},
                               {"/raster/transform", nullptr},
                               {"/raster/pixelSize", {0, 0}}});
    ExpectMembers(objects[1], {{"/raster/nodata", "nan"}, {"/columns/bands", 1}});
    ExpectMembers(objects, {{"/0/findings/0/code", "no-georeference"}, {"/2/findings/0/code", "unreadable"}});
    for (const std::size_t unreadable : {2U, 3U, 4U}) {
        ExpectMembers(objects[unreadable],
                      {{"/loadable", false}, {"/crs", nullptr}, {"/las", nullptr}, {"/raster", nullptr}});
        EXPECT_NE(objects[unreadable]["summary"], "");
    }
    ExpectMembers(objects, {{"/2/kind", "raster"}, {"/3/kind", "las"}, {"/4/kind", "unknown"}});
}

TEST(InspectJson, HasTheFactsOfAFeatureFile) {
    const TemporaryFolder folder;
    TestShapefile empty;
    empty.points.clear();
    folder.Write(L"b.PRJ", kWkt);
    const Json objects = Objects({empty.Write(folder, L"a"), TestShapefile().Write(folder, L"b"),
                                  folder.Write(L"c.shp", "no shapefile"), folder.Write(L"d.kmz", "no KMZ")});
    ExpectMembers(objects[0], {{"/kind", "feature"},
                               {"/loadable", true},
                               {"/findings/0/code", "no-features"},
                               {"/feature/featureCount", 0},
                               {"/feature/extent", nullptr}});
    ExpectMembers(objects[1], {{"/raster", nullptr},
                               {"/crs/epsg", 4326},
                               {"/feature/type", "SHP"},
                               {"/feature/featureCount", 3},
                               {"/feature/geometry", "Point"},
                               {"/feature/layers", Json::array({{{"name", "b"}, {"count", 3}}})},
                               {"/feature/extent", {7, 50, 9, 52}},
                               {"/feature/fields/1", {{"name", "HEIGHT"}, {"type", "Double"}}},
                               {"/feature/fields/2/type", "Integer"},
                               {"/columns/features", 3},
                               {"/columns/maximumY", 52}});
    for (const std::size_t unreadable : {2U, 3U}) {
        ExpectMembers(objects[unreadable],
                      {{"/kind", "feature"}, {"/loadable", false}, {"/feature", nullptr}});
        EXPECT_NE(objects[unreadable]["summary"], "");
    }
}

TEST(InspectJson, PrintsPhotosUnderTheKeysOfTheirMetadata) {
    const TemporaryFolder folder;
    const std::wstring photo =
        folder.Write(L"photo.tif", testing::PosedPhoto(8.25, 47.5, 600, "2019:07:14", 33693));
    const Json objects = Json::parse(Inspect({L"--json", L"--as", L"photo", photo}).out);
    ExpectMembers(objects, {{"/0/kind", "photo"},
                            {"/0/raster", nullptr},
                            {"/0/photo/GPSLongitude", 8.25},
                            {"/0/photo/GPSAltitude", 600},
                            {"/0/photo/CameraYaw", 0},
                            {"/0/photo/POSQuality", "NONE"},
                            {"/0/photo/timeUtc", "2019-07-14 09:21:33"},
                            {"/0/photo/truePose", true}});
    constexpr std::size_t kKeys = 28;
    EXPECT_EQ(objects[0]["photo"].size(), kKeys + 2);
    EXPECT_EQ(Json::parse(Inspect({L"--json", photo}).out)[0]["kind"], "raster");
}

TEST(InspectCommand, RefusesUnknownArgumentsAndReportsMissingPaths) {
    const TemporaryFolder folder;
    const std::wstring good = folder.Write(L"good.las", LasBuilder().Build());
    const Arguments cases[] = {{},
                               {L"--xml", good},
                               {L"--jobs", L"0", good},
                               {L"--jobs=99999999999", good},
                               {good, L"--jobs"},
                               {good, L"--as"},
                               {good, L"--as=film"}};
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

TEST(InspectCommand, ReportsWhatItCannotReadAndFoldersWithoutFiles) {
    const TemporaryFolder folder;
    folder.Write(L"empty/notes.txt", "no LAS");
    const Outcome empty = Inspect({folder.Name(L"empty")});
    EXPECT_EQ(empty.code, kInspectOk);
    EXPECT_THAT(empty.err, HasSubstr("empty' holds no file"));

    EXPECT_THAT(Inspect({L"bell\a.las"}).err, HasSubstr("'bell .las' does not exist"));
    // Links that are mistyped, or of another kind, give access all the same.
    for (const wchar_t* link :
         {L"https:/h/a.las?X-Amz-Signature=5ec4e7", L" https://h/a.las?sig=5ec4e7",
          L"s3://h/a.las?token=5ec4e7", L"ftp://me:5ec4e7@h/a.las", L"--url=https://h/a.las?sig=5ec4e7"}) {
        const std::string told = Inspect({link}).err;
        EXPECT_THAT(told, HasSubstr("a.las"));
        EXPECT_THAT(told, Not(HasSubstr("5ec4e7")));
    }
    std::error_code refused;  // on Windows by a right that few users have
    std::filesystem::create_symlink("circle", folder.Path() / "circle", refused);
    if (!refused) {
        const Outcome circle = Inspect({folder.Name(L"circle")});
        EXPECT_EQ(circle.code, kInspectPathMissing);
        EXPECT_THAT(circle.err, HasSubstr("circle' cannot be read: "));
    }
}

TEST(OrderedJobs, EndsWithTheThreadsThatCanBeStarted) {
    constexpr std::size_t kItems = 100;  // more than may wait
    for (const std::size_t threads : {0U, 1U, 3U}) {
        std::size_t started = 0;
        OrderedJobs<std::size_t> jobs(
            kItems, 4, [](std::size_t i) { return i; },
            [&](const std::function<void()>& run) {
                if (started++ == threads) {
                    throw std::system_error(std::make_error_code(std::errc::resource_unavailable_try_again));
                }
                return std::jthread(run);
            });
        std::vector<std::size_t> taken;
        EXPECT_TRUE(jobs.Run(
            [&](std::size_t, std::size_t&& result) {
                taken.push_back(result);
                return true;
            },
            [] { return false; }));
        std::vector<std::size_t> all(kItems);
        std::iota(all.begin(), all.end(), std::size_t{0});
        EXPECT_EQ(taken, all);

        OrderedJobs<std::size_t> failing(kItems, 4, [](std::size_t i) { return i; });
        EXPECT_THROW(failing.Run([](std::size_t, std::size_t&&) -> bool { throw std::bad_alloc(); },
                                 [] { return false; }),
                     std::bad_alloc);
    }
}

TEST(InspectCommand, ReadsAFileAsTheKindOfItsNameOrOfTheOption) {
    const TemporaryFolder folder;
    const std::wstring image = GeoTiff().Write(folder, L"a.tif");
    const std::wstring grid =
        folder.Write(L"b.ASC", "ncols 2\nnrows 2\nxllcorner 10\nyllcorner 20\ncellsize 5\n1 2\n3 4\n");
    folder.Write(L"b.prj", "");
    folder.Write(L"a.tif.aux.xml", "<PAMDataset/>");
    folder.Write(L"c.las", "LASF");
    TestShapefile().Write(folder, L"d");
    const std::wstring all = FromPath(folder.Path());
    const struct {
        Arguments arguments;
        std::vector<std::string> kinds;
    } cases[] = {{{all}, {"raster", "dem", "las", "feature"}},  // sidecars are no files of their own
                 {{L"--as", L"dem", all}, {"dem", "dem"}},
                 {{L"--as=raster", grid, image}, {"raster", "raster"}},
                 {{L"--as=las", all}, {"las"}},
                 {{L"--as=feature", all}, {"feature"}}};
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

TEST(InspectCsv, PrintsTheColumnsOfThePages) {
    const TemporaryFolder folder;
    FileReport report = InspectFile(folder.Write(L"a.las", LasBuilder().AddPoints(3).Build()));
    report.path = L"a, \"b\"\x1b.las";
    std::ostringstream out;
    const auto writer = MakeReportWriter(ReportFormat::Csv, out);
    writer->Write(report);
    writer->Finish();
    EXPECT_THAT(out.str(), StartsWith("path,kind,loadable,summary,findings,"));
    EXPECT_THAT(out.str(), HasSubstr("\r\n\"a, \"\"b\"\" .las\",las,true,"));

    const std::string raster = Inspect({L"--csv", Heights(-9999).Write(folder, L"a.tif")}).out;
    EXPECT_THAT(raster, HasSubstr(",500000,5299995,,500010,5300000,,"));
    EXPECT_THAT(raster, Not(HasSubstr(",details,"))) << "hidden columns are not printed";
    const std::string header = raster.substr(0, raster.find("\r\n"));
    // What stands in several lines is quoted, and may hold commas: the findings and the WKT.
    const std::string plain = std::regex_replace(raster, std::regex("\"[^\"]*(\"\"[^\"]*)*\""), "");
    EXPECT_EQ(std::ranges::count(plain, ','), 2 * std::ranges::count(header, ','));
}

}  // namespace
}  // namespace orvex
