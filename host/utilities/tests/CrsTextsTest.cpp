#include <cpl_string.h>
#include <gmock/gmock.h>
#include <ogr_spatialref.h>

#include <array>

#include "orvexcommon/OrvexUtilities.h"
#include "support/Environment.h"
#include "support/SpatialReference.h"
#include "support/Text.h"

namespace orvex {
namespace {

/// PROJ's database lies beside the programs.
class ProjData : public ::testing::Environment {
  public:
    void SetUp() override {
        CPLStringList paths;
        paths.AddString(ToUtf8(FromPath(ModuleFolder() / "proj")).c_str());
        OSRSetPROJSearchPaths(paths.List());
    }
};

const ::testing::Environment* const kProjData = ::testing::AddGlobalTestEnvironment(new ProjData);

/// WKT of an EPSG code in one dialect.
std::string Wkt(int code, const char* format = "WKT1_GDAL") {
    OGRSpatialReference crs;
    EXPECT_EQ(crs.importFromEPSG(code), OGRERR_NONE) << code;
    return ExportWkt(crs, format);
}

constexpr auto kEsri = "WKT1_ESRI";
constexpr auto kWkt2 = "WKT2_2019";

std::string Group(const std::string& wkt) {
    return OrvexUtilities::GetCompatibilityGroup(wkt);
}

std::string Replaced(std::string text, const std::string& from, const std::string& to) {
    const std::size_t place = text.find(from);
    EXPECT_NE(place, std::string::npos) << from;
    return text.replace(place, from.size(), to);
}

TEST(CrsTexts, CodesOfAWkt) {
    const struct {
        std::string wkt;
        bool found;
        std::array<long, 6> codes;  // whole, horizontal, vertical, geographic, linear and angular unit
    } cases[] = {
        {Wkt(4326), true, {4326, 4326, 0, 4326, 0, 9122}},
        {Wkt(25832), true, {25832, 25832, 0, 4258, 9001, 9122}},
        {Wkt(25832, kWkt2), true, {25832, 25832, 0, 4258, 9001, 9122}},
        {Wkt(2903), true, {2903, 2903, 0, 4152, 9003, 9122}},
        {Wkt(7415), true, {7415, 28992, 5709, 4289, 9001, 9122}},
        {Wkt(7415, kWkt2), true, {7415, 28992, 5709, 4289, 9001, 9122}},
        {Wkt(4978), true, {4978, 4978, 0, 0, 0, 0}},
        {Wkt(5703), false, {5703, 0, 5703, 0, 0, 0}},
        {R"(LOCAL_CS["Site",UNIT["metre",1,AUTHORITY["EPSG","9001"]]])", false, {0, 0, 0, 0, 9001, 0}},
        {R"(LOCAL_CS["Site",UNIT["metre",1],AUTHORITY["EPSG","99999999999999999999"]])",
         false,
         {0, 0, 0, 0, 0, 0}},
        {"garbage", false, {}},
        {"", false, {}},
    };
    for (const auto& row : cases) {
        long a = 7, b = 7, c = 7, d = 7, e = 7, f = 7;
        EXPECT_EQ(OrvexUtilities::CrsGetEPSGFromWKT(row.wkt, a, b, c, d, e, f), row.found) << row.wkt;
        EXPECT_THAT((std::array<long, 6>{a, b, c, d, e, f}), ::testing::ElementsAreArray(row.codes))
            << row.wkt;
    }
}

TEST(CrsTexts, TheSameCrsIsOneGroupInEveryDialect) {
    for (const int code : {4326, 25832, 2994, 2903, 7415, 5554, 3857}) {
        const std::string group = Group(Wkt(code));
        EXPECT_EQ(Group(Wkt(code, kWkt2)), group) << code;
        EXPECT_EQ(Group(Wkt(code, kEsri)), group) << code;
    }
    const std::string own =
        R"(PROJCS["mine",GEOGCS["WGS 84",DATUM["WGS_1984",SPHEROID["WGS 84",6378137,298.257223563]],)"
        R"(PRIMEM["Greenwich",0],UNIT["degree",0.0174532925199433]],PROJECTION["Transverse_Mercator"],)"
        R"(PARAMETER["latitude_of_origin",10],PARAMETER["central_meridian",11.25],PARAMETER["scale_factor",1],)"
        R"(PARAMETER["false_easting",5000],PARAMETER["false_northing",0],UNIT["metre",1]])";
    EXPECT_EQ(Group(own), Group(Replaced(own, "mine", "the same under another name")));
    EXPECT_EQ(Group(own), Group(Replaced(own, "0.0174532925199433", "0.01745329251994328")));
    EXPECT_NE(Group(own), Group(Replaced(own, "11.25", "11.5")));
    EXPECT_NE(Group(own), Group(Replaced(own, R"("metre",1])", R"("foot",0.3048])")));
}

TEST(CrsTexts, DifferentCrsAreDifferentGroups) {
    const std::vector<std::string> texts = {
        "",
        "garbage",
        Wkt(4326),
        Wkt(25832),
        Wkt(2994),
        Wkt(2903),
        Wkt(28992),
        Wkt(7415),  // the same with heights
        Replaced(Wkt(25832), R"("metre",1)", R"("US survey foot",0.304800609601219)"),
        R"(LOCAL_CS["Site A",UNIT["metre",1]])",
        R"(LOCAL_CS["Site B",UNIT["metre",1]])",
        R"(LOCAL_CS["Site A",UNIT["foot",0.3048]])",
        R"(LOCAL_CS["Site A",UNIT["US survey foot",0.304800609601219]])",
    };
    std::set<std::string> groups;
    for (const std::string& wkt : texts) {
        EXPECT_TRUE(groups.insert(Group(wkt)).second) << wkt;
    }
    EXPECT_EQ(Group(""), Group(" \r\n"));
}

}  // namespace
}  // namespace orvex
