// What orvex-inspect prints: JSON in its two forms, and CSV.
#include <gmock/gmock.h>

#include <algorithm>
#include <filesystem>
#include <limits>
#include <regex>
#include <sstream>

#include "feature/testing/TestShapefile.h"
#include "host/inspect/ReportWriter.h"
#include "host/inspect/tests/InspectRun.h"
#include "host/utilities/testing/PhotoSamples.h"
#include "las/testing/LasBuilder.h"
#include "raster/testing/GeoTiff.h"
#include "support/Text.h"
#include "support/testing/TemporaryFolder.h"

namespace orvex {
namespace {

using testing::Arguments;
using testing::ExpectMembers;
using testing::GeoTiff;
using ::testing::HasSubstr;
using testing::Inspect;
using testing::Json;
using testing::LasBuilder;
using ::testing::Not;
using testing::Objects;
using ::testing::StartsWith;
using testing::TemporaryFolder;
using testing::TestShapefile;

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
constexpr const char* kWkt =
    "GEOGCS[\"WGS 84\",DATUM[\"WGS_1984\",SPHEROID[\"WGS "
    "84\",6378137,298.257223563]],PRIMEM[\"Greenwich\",0],"
    "UNIT[\"degree\",0.0174532925199433],AUTHORITY[\"EPSG\",\"4326\"]]";

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
         {"/findings/0/where", {{"member", "/las/max"}, {"sidecar", nullptr}, {"offset", 179}}},
         {"/schema", 1},
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

TEST(InspectJson, SaysWhatEachFindingIsAbout) {
    const TemporaryFolder folder;
    const std::string cutOff = LasBuilder(14, 6)
                                   .AddPoints(1)
                                   .AddEvlr("vendor", 1, "data")
                                   .AddEvlr("vendor", 2, std::string(100, ' '))
                                   .Build();
    const std::wstring shape = TestShapefile().Write(folder, L"b");
    std::filesystem::remove(ToPath(WithExtension(shape, L".dbf")));
    GeoTiff bare;
    bare.crs = "";
    const std::uint64_t evlr = cutOff.size() - 100 - 60;
    const struct {
        std::wstring path;
        const char* code;
        Json where;
    } cases[] = {
        {folder.Write(L"a.las", cutOff.substr(0, cutOff.size() - 50)),
         "evlr-truncated",
         {{"member", "/las/evlrs/1"}, {"sidecar", nullptr}, {"offset", evlr}}},
        {folder.Write(L"c.las", LasBuilder().AddPoints(2).Lie(131, 0.0).Build()),
         "scale-zero",
         {{"member", "/las/scale"}, {"sidecar", nullptr}, {"offset", 131}}},
        {shape, "attributes-missing", {{"member", nullptr}, {"sidecar", ".dbf"}, {"offset", nullptr}}},
        {bare.Write(folder, L"d.tif"),
         "no-crs",
         {{"member", "/crs"}, {"sidecar", nullptr}, {"offset", nullptr}}},
        {folder.Write(L"e.tif", "no raster"), "unreadable", nullptr},
    };
    for (const auto& c : cases) {
        const Json object = Objects({c.path}).at(0);
        const auto found = std::ranges::find(object["findings"], c.code, [](const Json& finding) {
            return finding["code"].get<std::string>();
        });
        ASSERT_NE(found, object["findings"].end()) << c.code << object["findings"];
        EXPECT_EQ((*found)["where"], c.where) << c.code;
    }
}

TEST(InspectJson, HasTheSameObjectsInLines) {
    const TemporaryFolder folder;
    const Arguments paths = {folder.Write(L"a.las", LasBuilder().AddPoints(2).Build()),
                             folder.Write(L"b.txt", "text"), Heights(kNaN).Write(folder, L"c.tif")};
    std::istringstream lines(Inspect({L"--ndjson", paths[0], paths[1], paths[2]}).out);
    std::string line;
    for (const Json& object : Objects(paths)) {
        ASSERT_TRUE(std::getline(lines, line));
        EXPECT_EQ(Json::parse(line), object);
    }
    EXPECT_FALSE(std::getline(lines, line));
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
