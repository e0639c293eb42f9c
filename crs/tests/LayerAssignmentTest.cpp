#include "crs/LayerAssignment.h"

#include <gmock/gmock.h>

#include "orvexcommon/OrvexUtilities.h"
#include "support/Text.h"

namespace orvex {
namespace {

using ::testing::ElementsAre;
using Layers = std::map<std::wstring, std::wstring>;

/// Files of which nothing but the CRS matters.
class LayerAssignment : public ::testing::Test {
  protected:
    void Add(const std::string& group, long epsg) {
        auto crs = std::make_shared<CrsDescription>();
        crs->compatibilityGroup = group;
        crs->epsg = epsg;
        files.push_back(std::move(crs));
    }
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

TEST_F(LayerAssignment, FilesOfOneGroupAndCodeShareALayer) {
    Add("a", 1);
    Add("b", 2);
    Add("a", 1);
    Add("a", 3);
    files.push_back(nullptr);
    EXPECT_THAT(Assign({}, {}),
                ElementsAre(L"LAS Layer_1", L"LAS Layer_2", L"LAS Layer_1", L"LAS Layer_3", L""));
    EXPECT_EQ(places[2].group, 1U);
    EXPECT_EQ(places[3].group, 3U);
    EXPECT_EQ(places[4].group, 0U);
}

TEST_F(LayerAssignment, NewNamesLeaveOutTheNumbersInUse) {
    Add("a", 1);
    Add("b", 2);
    Add("c", 3);
    const Layers existing{
        {L"LAS Layer_1", L""}, {L"las layer_3", L""}, {L"LAS Layer_04", L""}, {L"Other_2", L""}};
    EXPECT_THAT(Assign(existing, {.append = false, .ignoreCrs = false}),
                ElementsAre(L"LAS Layer_2", L"LAS Layer_4", L"LAS Layer_5"));
}

TEST_F(LayerAssignment, AppendingTakesTheFirstCompatibleLayerOfTheProject) {
    const std::wstring wkt = Wkt(25832);
    const CrsPtr crs = DescribeCrs(ToUtf8(wkt));
    ASSERT_EQ(crs->epsg, 25832);
    Add(crs->compatibilityGroup, crs->epsg);
    Add("other", 1);
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
