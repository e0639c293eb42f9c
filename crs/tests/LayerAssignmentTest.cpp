#include "crs/LayerAssignment.h"

#include <gmock/gmock.h>

#include <regex>

#include "orvexcommon/OrvexUtilities.h"
#include "support/Text.h"

namespace orvex {
namespace {

using ::testing::ElementsAre;
using Layers = std::map<std::wstring, std::wstring>;

/// Files of which nothing but the CRS matters.
class LayerAssignment : public ::testing::Test {
  protected:
    /// A file with this WKT, identified.
    void Add(const std::string& wkt) {
        files.push_back(DescribeCrs(wkt));
        files.back()->Identify();
    }
    /// A file with a local CRS of this name.
    void AddLocal(const std::string& name) { Add("LOCAL_CS[\"" + name + "\",UNIT[\"metre\",1]]"); }
    std::vector<std::wstring> Assign(const Layers& existing, LayerRules rules) {
        places = PlaceInLayers(files, existing, rules, L"LAS Layer_");
        std::vector<std::wstring> layers;
        for (const LayerPlace& place : places) {
            layers.push_back(place.layer);
        }
        return layers;
    }
    /// The WKT of an EPSG code as a project stores it.
    static std::wstring Wkt(int code) { return FromUtf8(OrvexUtilities::CrsGetPrettyWktFromEPSG(code)); }

    std::vector<CrsPtr> files;
    std::vector<LayerPlace> places;
};

TEST_F(LayerAssignment, FilesOfOneGroupShareALayer) {
    AddLocal("a");
    AddLocal("b");
    AddLocal("a");
    files.push_back(nullptr);
    // The same CRS with and without its code.
    Add(ToUtf8(Wkt(25832)));
    Add(std::regex_replace(ToUtf8(Wkt(25832)), std::regex(R"(,\s*AUTHORITY\["EPSG","\d+"\])"), ""));
    ASSERT_EQ(files.back()->epsg, 0);
    EXPECT_THAT(Assign({}, {}), ElementsAre(L"LAS Layer_1", L"LAS Layer_2", L"LAS Layer_1", L"",
                                            L"LAS Layer_3", L"LAS Layer_3"));
    EXPECT_EQ(places[2].group, 1U);
    EXPECT_EQ(places[3].group, 0U);
    EXPECT_EQ(places[5].group, 3U);
}

// As when the search for its code was stopped.
TEST_F(LayerAssignment, FilesWithoutAnIdentityAreGroupedByTheirText) {
    const std::string one = R"(LOCAL_CS["never identified",UNIT["metre",1]])";
    files = {DescribeCrs(one), DescribeCrs(one + " "), DescribeCrs(one)};
    EXPECT_THAT(Assign({}, {}), ElementsAre(L"LAS Layer_1", L"LAS Layer_2", L"LAS Layer_1"));
}

TEST_F(LayerAssignment, NewNamesLeaveOutTheNumbersInUse) {
    AddLocal("a");
    AddLocal("b");
    AddLocal("c");
    const Layers existing{
        {L"LAS Layer_1", L""}, {L"las layer_3", L""}, {L"LAS Layer_04", L""}, {L"Other_2", L""}};
    EXPECT_THAT(Assign(existing, {.append = false, .ignoreCrs = false}),
                ElementsAre(L"LAS Layer_2", L"LAS Layer_4", L"LAS Layer_5"));
}

TEST_F(LayerAssignment, AppendingTakesTheFirstCompatibleLayerOfTheProject) {
    const std::wstring wkt = Wkt(25832);
    Add(ToUtf8(wkt));
    AddLocal("other");
    const Layers existing{{L"B roads", wkt}, {L"A roads", wkt}, {L"Dutch", Wkt(28992)}};
    EXPECT_THAT(Assign(existing, {}), ElementsAre(L"A roads", L"LAS Layer_1"));
    EXPECT_TRUE(places[0].exists);
    EXPECT_FALSE(places[1].exists);
    EXPECT_THAT(Assign(existing, {.append = false, .ignoreCrs = false}),
                ElementsAre(L"LAS Layer_1", L"LAS Layer_2"));
    EXPECT_FALSE(places[0].exists);
}

}  // namespace
}  // namespace orvex
