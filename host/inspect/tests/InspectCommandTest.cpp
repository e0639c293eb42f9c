#include "host/inspect/InspectCommand.h"

#include <gmock/gmock.h>

#include <boost/property_tree/json_parser.hpp>
#include <filesystem>
#include <sstream>

#include "host/inspect/OrderedJobs.h"
#include "host/inspect/ReportWriter.h"
#include "las/testing/LasBuilder.h"
#include "support/Text.h"
#include "support/testing/TemporaryFolder.h"

namespace orvex {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using testing::LasBuilder;
using ::testing::StartsWith;
using testing::TemporaryFolder;
using Tree = boost::property_tree::ptree;

constexpr const char* kWkt =
    "GEOGCS[\"WGS 84\",DATUM[\"WGS_1984\",SPHEROID[\"WGS "
    "84\",6378137,298.257223563]],PRIMEM[\"Greenwich\",0],"
    "UNIT[\"degree\",0.0174532925199433],AUTHORITY[\"EPSG\",\"4326\"]]";

struct Outcome {
    int code;
    std::string out;
    std::string err;
};

Outcome Inspect(const std::vector<std::wstring>& arguments, bool stop = false) {
    std::ostringstream out;
    std::ostringstream err;
    const int code = RunInspectCommand(arguments, {out, err, false, [stop] { return stop; }});
    return {code, out.str(), err.str()};
}

std::vector<Tree> Objects(const std::string& json) {
    std::istringstream in(json);
    Tree tree;
    boost::property_tree::read_json(in, tree);
    std::vector<Tree> objects;
    for (const auto& [key, object] : tree) {
        objects.push_back(object);
    }
    return objects;
}

std::vector<std::string> Keys(const Tree& object) {
    std::vector<std::string> keys;
    for (const auto& [key, value] : object) {
        keys.push_back(key);
    }
    return keys;
}

LasBuilder RichFile() {
    return LasBuilder(14, 6)
        .AddPoints(4, 10, 50)
        .Wkt(kWkt)
        .AddVlr("vendor", 7, "12345678", "eight bytes")
        .AddEvlr("vendor", 8, "data", "behind")
        .AddExtraBytes("Amplitude", 3, 2)
        .AddExtraBytes("Width", 5, 4)
        .EncodingBits(1);
}

TEST(InspectJson, HasEveryKeyInItsPlace) {
    const TemporaryFolder folder;
    const Outcome outcome = Inspect({L"--json", folder.Write(L"a.las", RichFile().Build())});
    ASSERT_EQ(outcome.code, kInspectOk) << outcome.err;
    const std::vector<Tree> objects = Objects(outcome.out);
    ASSERT_EQ(objects.size(), 1U);
    const Tree& object = objects.front();
    EXPECT_THAT(Keys(object),
                ElementsAre("path", "kind", "loadable", "summary", "findings", "crs", "las", "raster"));
    EXPECT_THAT(Keys(object.get_child("crs")),
                ElementsAre("name", "isGeographic", "linearUnits", "angularUnits", "epsg", "prettyWkt"));
    EXPECT_THAT(
        Keys(object.get_child("las")),
        ElementsAre("version", "versionCode", "pointFormat", "compressed", "headerSize", "offsetToPoints",
                    "pointRecordLength", "pointCount", "scale", "offset", "min", "max", "globalEncoding",
                    "gpsTime", "vlrs", "evlrs", "extraBytes", "companionStatus", "vlrText"));
    EXPECT_THAT(Keys(object.get_child("las.vlrs").front().second),
                ElementsAre("userId", "recordId", "length", "description"));
    EXPECT_THAT(Keys(object.get_child("las.extraBytes").front().second),
                ElementsAre("name", "offset", "size"));
}

TEST(InspectJson, TellsWhatTheFileHolds) {
    const TemporaryFolder folder;
    const std::wstring path = folder.Write(L"Größe '1'.LAS", RichFile().Build());
    const Tree object = Objects(Inspect({L"--json", path}).out).front();
    EXPECT_EQ(object.get<std::string>("path"), ToUtf8(path));
    EXPECT_EQ(object.get<std::string>("kind"), "las");
    EXPECT_TRUE(object.get<bool>("loadable"));
    EXPECT_EQ(object.get<std::string>("crs.name"), "WGS 84");
    EXPECT_TRUE(object.get<bool>("crs.isGeographic"));
    EXPECT_EQ(object.get<int>("crs.epsg"), 4326);
    EXPECT_EQ(object.get<std::string>("las.version"), "1.4");
    EXPECT_EQ(object.get<int>("las.versionCode"), 5);
    EXPECT_EQ(object.get<int>("las.pointFormat"), 6);
    EXPECT_EQ(object.get<int>("las.pointRecordLength"), 30 + 6);
    EXPECT_EQ(object.get<int>("las.pointCount"), 4);
    EXPECT_EQ(object.get<int>("las.globalEncoding"), 17);
    EXPECT_EQ(object.get_child("las.min").front().second.get_value<double>(), 10.0);
    EXPECT_EQ(object.get_child("las.evlrs").front().second.get<std::string>("description"), "behind");
    const Tree& width = object.get_child("las.extraBytes").back().second;
    EXPECT_EQ(width.get<std::string>("name"), "Width");
    EXPECT_EQ(width.get<int>("offset"), 2);
    EXPECT_EQ(width.get<int>("size"), 4);
    EXPECT_THAT(object.get<std::string>("las.vlrText"), HasSubstr("31 32 33 34 35 36 37 38"));
}

TEST(InspectJson, KeepsFilesThatCannotBeOpened) {
    const TemporaryFolder folder;
    const std::wstring broken = folder.Write(L"broken.las", "LASF");
    const std::wstring other = folder.Write(L"readme.txt", "text");
    const Outcome outcome = Inspect({L"--json", broken, other});
    EXPECT_EQ(outcome.code, kInspectOk);
    const std::vector<Tree> objects = Objects(outcome.out);
    ASSERT_EQ(objects.size(), 2U);
    for (const Tree& object : objects) {
        EXPECT_FALSE(object.get<bool>("loadable"));
        EXPECT_NE(object.get<std::string>("summary"), "");
        EXPECT_EQ(object.get<std::string>("las"), "null");
    }
    EXPECT_EQ(objects[0].get<std::string>("kind"), "las");
    EXPECT_EQ(objects[1].get<std::string>("kind"), "unknown");
}

TEST(InspectJson, SurvivesTextsAndNumbersThatAreNone) {
    const TemporaryFolder folder;
    const double nan = std::numeric_limits<double>::quiet_NaN();
    const std::string bytes =
        LasBuilder(12, 0).AddPoints(1).AddVlr("\xFF\xFE", 1, "", "\x80").Lie(179, nan).Build();
    const Outcome outcome = Inspect({L"--json", folder.Write(L"odd.las", bytes)});
    const Tree object = Objects(outcome.out).front();
    EXPECT_EQ(object.get_child("las.max").front().second.get_value<std::string>(), "null");
    EXPECT_EQ(object.get_child("las.vlrs").front().second.get<std::string>("userId"),
              "\xEF\xBF\xBD\xEF\xBF\xBD");
}

TEST(InspectCommand, ReportsMissingPathsAndPrintsTheOthers) {
    const TemporaryFolder folder;
    const std::wstring good = folder.Write(L"good.las", LasBuilder().AddPoints(1).Build());
    const Outcome outcome = Inspect({L"--json", folder.Name(L"none.las"), good});
    EXPECT_EQ(outcome.code, kInspectPathMissing);
    EXPECT_THAT(outcome.err, HasSubstr("none.las"));
    EXPECT_EQ(Objects(outcome.out).size(), 1U);
}

TEST(InspectCommand, RefusesWhatItDoesNotUnderstand) {
    const TemporaryFolder folder;
    const std::wstring good = folder.Write(L"good.las", LasBuilder().Build());
    const std::vector<std::vector<std::wstring>> cases = {
        {},
        {L"--xml", good},
        {L"--jobs", L"0", good},
        {L"--jobs", L"many", good},
        {L"--jobs=99999999999", good},
        {good, L"--jobs"},
    };
    for (const auto& arguments : cases) {
        const Outcome outcome = Inspect(arguments);
        EXPECT_EQ(outcome.code, kInspectUsage);
        EXPECT_NE(outcome.err, "");
        EXPECT_EQ(outcome.out, "");
    }
    EXPECT_EQ(Inspect({L"--", good}).code, kInspectOk);
    EXPECT_EQ(Inspect({L"--help"}).code, kInspectOk);
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
    const Outcome outcome = Inspect({L"--json", L"--jobs", L"4", FromPath(folder.Path())});
    ASSERT_EQ(outcome.code, kInspectOk);
    const std::vector<Tree> objects = Objects(outcome.out);
    ASSERT_EQ(objects.size(), wanted.size());
    for (std::size_t i = 0; i < wanted.size(); ++i) {
        EXPECT_EQ(objects[i].get<std::string>("path"), wanted[i]);
        EXPECT_EQ(objects[i].get<std::size_t>("las.pointCount"), i + 1);
    }
}

TEST(InspectCommand, LeavesACompleteDocumentWhenStopped) {
    const TemporaryFolder folder;
    const std::wstring good = folder.Write(L"good.las", LasBuilder().AddPoints(1).Build());
    const Outcome outcome = Inspect({L"--json", good}, true);
    EXPECT_EQ(outcome.code, kInspectStopped);
    EXPECT_EQ(Objects(outcome.out).size(), 0U);
}

/// A drive that is full.
class RefusingBuffer : public std::streambuf {};

TEST(InspectCommand, TellsThatTheOutputCannotBeWritten) {
    const TemporaryFolder folder;
    folder.Write(L"good.las", LasBuilder().AddPoints(1).Build());
    RefusingBuffer refusing;
    std::ostream full(&refusing);
    std::ostringstream err;
    EXPECT_EQ(RunInspectCommand({FromPath(folder.Path())}, {full, err}), kInspectFailed);
    EXPECT_EQ(err.str(), ToUtf8(Text(41050_lsid)) + '\n');
}

TEST(InspectCsv, QuotesAsTheFormatSays) {
    const TemporaryFolder folder;
    FileReport report = InspectFile(folder.Write(L"a.las", LasBuilder().AddPoints(3).Build()));
    report.path = L"a, \"b\".las";
    std::ostringstream out;
    const auto writer = MakeReportWriter(ReportFormat::Csv, out);
    writer->Write(report);
    writer->Finish();
    EXPECT_THAT(out.str(), StartsWith("path,kind,loadable,summary,"));
    EXPECT_THAT(out.str(), HasSubstr("\r\n\"a, \"\"b\"\".las\",las,true,"));
    EXPECT_TRUE(out.str().ends_with("\r\n"));
}

std::u32string Characters(const std::string& utf8) {
    return std::filesystem::path(std::u8string(utf8.begin(), utf8.end())).u32string();
}

TEST(InspectTable, AlignsItsColumns) {
    const TemporaryFolder folder;
    folder.Write(L"a.las", LasBuilder().AddPoints(3).Build());
    folder.Write(L"long \U0001F600 name.las", LasBuilder(14, 6).AddPoints(1234).Build());
    folder.Write(L"broken.las", "no");
    std::istringstream lines(Inspect({FromPath(folder.Path())}).out);
    std::vector<std::u32string> rest;  // by characters, which a cut name has others of than bytes
    for (std::string line; std::getline(lines, line);) {
        rest.push_back(Characters(line));
    }
    ASSERT_EQ(rest.size(), 5U);
    const std::size_t end = rest[0].find(U"Points") + 6;
    EXPECT_EQ(rest[2].substr(end - 1, 3), U"3  ");
    EXPECT_EQ(rest[4].substr(end - 5, 7), U"1 234  ");
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
