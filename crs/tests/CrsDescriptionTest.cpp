#include "crs/CrsDescription.h"

#include <cpl_conv.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <regex>
#include <string>
#include <tuple>

#include "orvexcommon/OrvexUtilities.h"
#include "support/Text.h"

namespace orvex {
namespace {

using ::testing::HasSubstr;
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
    CPLSetConfigOption("OSR_WKT_FORMAT", "the host's own");
    DescribeCrs(Wkt(31467));
    EXPECT_STREQ(CPLGetConfigOption("OSR_WKT_FORMAT", "unset"), "the host's own");
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
        EXPECT_EQ(crs->identity.Known() != nullptr, row.epsg != 0 || row.name[0] == L'\0') << start;
        EXPECT_EQ(crs->problem.empty(), row.wkt.empty() || row.name[0] != L'\0') << start;
        EXPECT_EQ(DescribeCrs(row.wkt), crs) << "from the cache: " << start;
    }
    EXPECT_EQ(DescribeCrs(Wkt(7415))->verticalEpsg, 5709);
    EXPECT_EQ(DescribeCrs(Wkt(7415))->verticalUnits, L"metre");
    EXPECT_EQ(DescribeCrs(Wkt(25832))->verticalUnits, L"");
    EXPECT_STREQ(CPLGetConfigOption("OSR_WKT_FORMAT", "unset"), "WKT1") << "after one that needs WKT2";
    CPLSetConfigOption("OSR_WKT_FORMAT", nullptr);
    EXPECT_EQ(::testing::internal::GetCapturedStderr(), "");
}

// A datum with several realizations comes as one datum or as an ensemble, depending on what PROJ has read
// before.
TEST(CrsDescription, WritesADatumTheSameWhicheverWayItComes) {
    const auto wgs84 = [](const std::string& datum) {
        return "GEOGCRS[\"Lidar \"\"MEMBER[\",\n" + datum +
               R"(,PRIMEM["Greenwich",0],CS[ellipsoidal,3],AXIS["lat",north,ANGLEUNIT["degree",0.0174532925199433]],)"
               R"(AXIS["lon",east,ANGLEUNIT["degree",0.0174532925199433]],AXIS["h",up,LENGTHUNIT["metre",1]]])";
    };
    const std::string ellipsoid = R"(ELLIPSOID["WGS 84",6378137,298.257223563])";
    const CrsPtr datum = DescribeCrs(wgs84(R"(DATUM["World Geodetic System 1984",)" + ellipsoid + "]"));
    const CrsPtr ensemble = DescribeCrs(wgs84(R"wkt(ENSEMBLE["World Geodetic System 1984 ensemble",)wkt"
                                              R"wkt(MEMBER["World Geodetic System 1984 (G730)"],)wkt"
                                              R"wkt(MEMBER["World Geodetic System 1984 (G2139)"],)wkt" +
                                              ellipsoid + ",ENSEMBLEACCURACY[2.0]]"));
    EXPECT_EQ(datum->name, L"Lidar \"MEMBER[");
    EXPECT_THAT(ToUtf8(datum->prettyWkt),
                HasSubstr("DATUM[\"World Geodetic System 1984\",\r\n        ELLIPSOID["));
    EXPECT_EQ(datum->prettyWkt, ensemble->prettyWkt);
    EXPECT_EQ(datum->Identify().group, ensemble->Identify().group);
}

/// A CRS of the EPSG database in the text of a maker that leaves the codes out, and that no other test
/// describes.
TEST(CrsDescription, FindsTheCodeThatATextLeavesOut) {
    const CrsPtr crs =
        DescribeCrs(std::regex_replace(Wkt(5651), std::regex(R"(,\s*AUTHORITY\["EPSG","\d+"\])"), ""));
    EXPECT_EQ(crs->Epsg(), 0);
    EXPECT_EQ(crs->identity.Known(), nullptr) << "searching takes long";
    EXPECT_EQ(crs->Identify().epsg, 5651);
    EXPECT_EQ(crs->Epsg(), 5651);
    EXPECT_EQ(crs->Identify().group, DescribeCrs(Wkt(5651))->Identify().group);
}

}  // namespace
}  // namespace orvex
