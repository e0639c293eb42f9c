// The command orvex-inspect: its arguments, its input and how it ends.
#include <gmock/gmock.h>

#include <algorithm>
#include <filesystem>
#include <numeric>
#include <sstream>
#include <system_error>

#include "feature/testing/TestShapefile.h"
#include "host/inspect/OrderedJobs.h"
#include "host/inspect/tests/InspectRun.h"
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
using testing::Outcome;
using ::testing::StartsWith;
using testing::TemporaryFolder;
using testing::TestShapefile;

TEST(InspectCommand, RefusesUnknownArgumentsAndReportsMissingPaths) {
    const TemporaryFolder folder;
    const std::wstring good = folder.Write(L"good.las", LasBuilder().Build());
    const Arguments cases[] = {{},
                               {L"--xml", good},
                               {L"--jobs", L"0", good},
                               {L"--jobs=99999999999", good},
                               {good, L"--jobs"},
                               {good, L"--as"},
                               {good, L"--as=film"},
                               {good, L"--json", L"--csv"},
                               {good, L"--table", L"--ndjson"},
                               {good, L"--json=yes"},
                               {good, L"--fail-on", L"note"},
                               {good, L"--language=fr"},
                               {good, L"--null"}};
    for (const Arguments& arguments : cases) {
        const Outcome outcome = Inspect(arguments);
        EXPECT_EQ(outcome.code, kInspectUsage);
        EXPECT_NE(outcome.err, "");
        EXPECT_EQ(outcome.out, "");
    }
    EXPECT_THAT(Inspect({L"--json", L"--csv", good}).err, HasSubstr("--json and --csv"));
    EXPECT_EQ(Inspect({L"--json", L"--json", good}).code, kInspectOk);
    EXPECT_EQ(Inspect({L"--", good}).code, kInspectOk);
    EXPECT_THAT(Inspect({L"--", L"-"}).err, HasSubstr("-' does not exist"));
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

TEST(InspectCommand, FailsForTheFindingsAskedFor) {
    const TemporaryFolder folder;
    const std::wstring noted = folder.Write(L"noted.las", LasBuilder().AddPoints(1).Build());
    const std::wstring empty = folder.Write(L"empty.las", LasBuilder().Build());
    const std::wstring cutOff = folder.Write(L"cut.las", LasBuilder().AddPoints(5).Build().substr(0, 250));
    const std::wstring other = folder.Write(L"other.txt", "text");
    const struct {
        std::wstring path;
        int none, error, warning;
    } cases[] = {{noted, kInspectOk, kInspectOk, kInspectOk},
                 {empty, kInspectOk, kInspectOk, kInspectPathMissing},
                 {cutOff, kInspectOk, kInspectPathMissing, kInspectPathMissing},
                 {other, kInspectOk, kInspectPathMissing, kInspectPathMissing}};
    for (const auto& c : cases) {
        EXPECT_EQ(Inspect({c.path}).code, c.none) << ToUtf8(c.path);
        EXPECT_EQ(Inspect({L"--fail-on=none", c.path}).code, c.none) << ToUtf8(c.path);
        EXPECT_EQ(Inspect({L"--fail-on=error", c.path}).code, c.error) << ToUtf8(c.path);
        EXPECT_EQ(Inspect({L"--fail-on", L"warning", c.path}).code, c.warning) << ToUtf8(c.path);
    }
    EXPECT_EQ(Inspect({L"--fail-on=error", noted, cutOff, other}).err,
              "2 of 3 files have what --fail-on names.\n");
}

TEST(InspectCommand, ReadsNamesFromStandardInput) {
    const TemporaryFolder folder;
    const std::string las = LasBuilder().AddPoints(1).Build();
    const std::string a = ToUtf8(folder.Write(L"Größe a.las", las));
    const std::string b = ToUtf8(folder.Write(L"sub/b.las", las));
    const std::wstring named = folder.Write(L"c.las", las);
    const std::string sub = ToUtf8(folder.Name(L"sub"));
    const struct {
        Arguments arguments;
        std::string input;
        std::vector<std::string> paths;
    } cases[] = {{{L"-"}, a + "\n" + b + "\n", {a, b}},
                 {{L"-"}, "\xEF\xBB\xBF" + a + "\r\n\r\n" + b, {a, b}},
                 {{L"-0", L"-"}, a + '\0' + b, {a, b}},
                 {{L"--null", L"-"}, a + '\0', {a}},
                 {{named, L"-", named}, sub, {ToUtf8(named), b, ToUtf8(named)}},
                 {{L"-"}, "", {}}};
    for (const auto& c : cases) {
        Arguments arguments = c.arguments;
        arguments.insert(arguments.begin(), L"--json");
        const Outcome outcome = Inspect(arguments, false, c.input);
        EXPECT_EQ(outcome.code, kInspectOk) << outcome.err;
        std::vector<std::string> paths;
        for (const Json& object : Json::parse(outcome.out)) {
            paths.push_back(object["path"]);
        }
        EXPECT_EQ(paths, c.paths);
    }
    // A list with zero bytes would be one long name that the system cuts off at the first of them.
    for (const std::string& input :
         {std::string(a).append(1, '\0').append(b), std::string(std::size_t{2} << 20U, 'a')}) {
        const Outcome outcome = Inspect({L"-"}, false, input);
        EXPECT_EQ(outcome.code, kInspectUsage);
        EXPECT_EQ(outcome.out, "");
        EXPECT_THAT(outcome.err, StartsWith("A name on standard input "));
    }
}

TEST(InspectCommand, CountsFilesAndMentionsEmptyFoldersAsAsked) {
    const TemporaryFolder folder;
    const std::wstring good = folder.Write(L"good.las", LasBuilder().AddPoints(1).Build());
    const Arguments all = {good, good, folder.Name(L"empty")};
    folder.Write(L"empty/notes.txt", "no LAS");
    const auto told = [&all](const wchar_t* option) {
        return Inspect({option, L"--jobs=1", all[0], all[1], all[2]}).err;
    };
    const std::string remark = told(L"--table");
    EXPECT_THAT(remark, HasSubstr("empty' holds no file"));
    EXPECT_EQ(told(L"--quiet"), "");
    EXPECT_EQ(told(L"--progress"), "1 of 2 files\n2 of 2 files\n" + remark);
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

    // In the middle of the search of a folder, which was not found to be empty then.
    folder.Write(L"empty/notes.txt", "no LAS");
    int polls = 0;
    std::ostringstream out;
    std::ostringstream remarks;
    EXPECT_EQ(RunInspectCommand({L"--json", folder.Name(L"empty")},
                                {out, remarks, false, [&polls] { return ++polls > 2; }}),
              kInspectStopped);
    EXPECT_EQ(out.str(), "[]\n");
    EXPECT_EQ(remarks.str(), "");

    RefusingBuffer refusing;
    std::ostream full(&refusing);
    std::ostringstream err;
    EXPECT_EQ(RunInspectCommand({good}, {full, err}), kInspectFailed);
    EXPECT_EQ(err.str(), ToUtf8(Text(text::kInspectWriteFailed)) + '\n');
}

}  // namespace
}  // namespace orvex
