#include "crs/CrsDescription.h"

#include <cpl_conv.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <atomic>
#include <future>
#include <stdexcept>
#include <string>
#include <thread>
#include <tuple>
#include <vector>

#include "crs/CrsCache.h"
#include "orvexcommon/OrvexUtilities.h"
#include "support/Text.h"

namespace orvex {
namespace {

using ::testing::StartsWith;

std::string Wkt(int code) {
    return OrvexUtilities::CrsGetPrettyWktFromEPSG(code);
}

/// A CRS that only WKT2 can express.
constexpr char kDerived[] =
    R"wkt(GEOGCRS["turned",BASEGEOGCRS["WGS 84",DATUM["World Geodetic System 1984",)wkt"
    R"wkt(ELLIPSOID["WGS 84",6378137,298.257223563]]],DERIVINGCONVERSION["Turned pole",)wkt"
    R"wkt(METHOD["Turned pole of our own"],PARAMETER["Latitude of the pole",39.25,)wkt"
    R"wkt(ANGLEUNIT["degree",0.0174532925199433]]],CS[ellipsoidal,2],AXIS["latitude",north],)wkt"
    R"wkt(AXIS["longitude",east],ANGLEUNIT["degree",0.0174532925199433]])wkt";

TEST(CrsDescription, Table) {
    struct Case {
        std::string wkt;
        const wchar_t* name;
        bool isGeographic;
        const wchar_t *linear, *angular;
        long epsg;
        const wchar_t* vertical;
        const char* prettyStart;
    };
    ::testing::internal::CaptureStderr();
    for (const Case& row : {
             Case{"", L"", false, L"", L"", 0, L"", ""},
             Case{Wkt(4326), L"WGS 84", true, L"Unknown", L"degree", 4326, L"",
                  "GEOGCS[\"WGS 84\",\r\n    DATUM["},
             Case{Wkt(25832), L"ETRS89 / UTM zone 32N", false, L"metre", L"degree", 25832, L"", "PROJCS["},
             Case{Wkt(2903), L"NAD83(HARN) / New Mexico Central (ftUS)", false, L"US survey foot", L"degree",
                  2903, L"", "PROJCS["},
             Case{Wkt(7415), L"Amersfoort / RD New + NAP height", false, L"metre", L"degree", 7415,
                  L"NAP height", "COMPD_CS["},
             Case{R"(LOCAL_CS["Site grid",UNIT["foot",0.3048]])", L"Site grid", false, L"foot", L"degree", 0,
                  L"", "LOCAL_CS[\"Site grid\",\r\n    UNIT["},
             Case{R"(LOCAL_CS["Site grid",UNIT["UNKNOWN",1]])", L"Site grid", false, L"Unknown", L"degree", 0,
                  L"", "LOCAL_CS["},
             Case{R"(LOCAL_CS["Gelände Süd",UNIT["metre",1]])", L"Gelände Süd", false, L"metre", L"degree", 0,
                  L"", "LOCAL_CS["},
             Case{kDerived, L"turned", true, L"Unknown", L"degree", 0, L"",
                  "GEOGCRS[\"turned\",\r\n    BASEGEOGCRS["},
             Case{"garbage", L"", false, L"Unknown", L"degree", 0, L"", ""},
             Case{"COMPD_CS[\"half\",GEOGCS[\"x\"]]", L"", false, L"Unknown", L"degree", 0, L"", ""},
             Case{"PROJCS[\"cut", L"", false, L"Unknown", L"degree", 0, L"", ""},
             Case{std::string(2 << 20, '['), L"", false, L"Unknown", L"degree", 0, L"", ""},
         }) {
        const std::string start = row.wkt.substr(0, 60);
        const CrsPtr crs = DescribeCrs(row.wkt);
        EXPECT_TRUE(crs->sourceWkt == row.wkt);
        EXPECT_EQ(std::tuple(crs->name, crs->isGeographic), std::tuple(row.name, row.isGeographic)) << start;
        EXPECT_EQ(std::tuple(crs->linearUnits, crs->angularUnits), std::tuple(row.linear, row.angular))
            << start;
        EXPECT_EQ(std::tuple(crs->epsg, crs->verticalName), std::tuple(row.epsg, row.vertical)) << start;
        const std::string pretty = ToUtf8(crs->prettyWkt);
        EXPECT_THAT(pretty, StartsWith(row.prettyStart)) << start;
        for (std::size_t end = pretty.find('\n'); end != std::string::npos;
             end = pretty.find('\n', end + 1)) {
            EXPECT_EQ(pretty[end - 1], '\r') << start;
        }
        EXPECT_EQ(DescribeCrs(row.wkt), crs) << "from the cache: " << start;
    }
    EXPECT_STREQ(CPLGetConfigOption("OSR_WKT_FORMAT", "unset"), "WKT1") << "it stays set";
    EXPECT_EQ(::testing::internal::GetCapturedStderr(), "");
}

using ::testing::ElementsAre;

CrsPtr Described(const std::string& wkt) {
    auto description = std::make_shared<CrsDescription>();
    description->sourceWkt = wkt;
    return description;
}

TEST(CrsCache, KeepsTheLatestUsedAndNoFailure) {
    std::vector<std::string> described;
    CrsCache cache(3, [&](const std::string& wkt) {
        described.push_back(wkt);
        return described.size() == 1 ? throw std::runtime_error("no memory") : Described(wkt);
    });
    EXPECT_THROW(cache.Get("a"), std::runtime_error);
    const CrsPtr a = cache.Get("a");
    cache.Get("b");
    cache.Get("c");
    EXPECT_EQ(cache.Get("a"), a);
    cache.Get("d");  // drops b, the one not used for longest
    EXPECT_EQ(cache.Get("a"), a);
    cache.Get("c");
    EXPECT_EQ(cache.Get("b")->sourceWkt, "b");
    EXPECT_THAT(described, ElementsAre("a", "a", "b", "c", "d", "b"));
}

TEST(CrsCache, ThreadsThatAskAtOnceGetOneDescription) {
    std::atomic<int> running{0}, overlaps{0}, calls{0}, wrong{0};
    CrsCache cache(100, [&](const std::string& wkt) {
        overlaps += running++ > 0 ? 1 : 0;
        ++calls;
        std::this_thread::yield();
        --running;
        return Described(wkt);
    });
    constexpr int kThreads = 4;
    std::vector<std::future<void>> threads;
    threads.reserve(kThreads);
    for (int t = 0; t < kThreads; ++t) {
        threads.push_back(std::async(std::launch::async, [&] {
            for (int i = 0; i < 2000; ++i) {
                const std::string wkt = std::to_string(i % 50);
                wrong += cache.Get(wkt)->sourceWkt == wkt ? 0 : 1;
            }
        }));
    }
    threads.clear();
    EXPECT_EQ(wrong, 0);
    EXPECT_EQ(overlaps, 0);
    EXPECT_EQ(calls, 50);
}

}  // namespace
}  // namespace orvex
