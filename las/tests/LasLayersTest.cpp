#include "las/LasLayers.h"

#include <gmock/gmock.h>

#include "las/testing/LasBuilder.h"
#include "support/Text.h"
#include "support/testing/TemporaryFolder.h"

namespace orvex {
namespace {

using ::testing::ElementsAre;
using Layers = std::map<std::wstring, std::wstring>;

/// Rows whose CRS is all that matters.
class LasLayers : public ::testing::Test {
  protected:
    void Add(const std::string& group, long epsg, bool loadable = true) {
        auto crs = std::make_shared<CrsDescription>();
        crs->compatibilityGroup = group;
        crs->epsg = epsg;
        LasRow row;
        row.inspection.crs = crs;
        row.inspection.loadable = loadable;
        rows.push_back(std::move(row));
    }

    std::vector<std::wstring> Assign(const Layers& existing, LasLayerRules rules) {
        AssignLayers(rows, existing, rules);
        std::vector<std::wstring> layers;
        for (const LasRow& row : rows) {
            layers.push_back(row.layer);
        }
        return layers;
    }

    /// The WKT of an EPSG code as a project stores it, with the group that a file of it has.
    static std::wstring Wkt(int code) {
        const testing::TemporaryFolder folder;
        const auto builder =
            testing::LasBuilder(12, 0).AddPoints(4).ProjectedEpsg(static_cast<std::uint16_t>(code));
        return FromUtf8(InspectLasFile(folder.Write(L"a.las", builder.Build())).crs->sourceWkt);
    }

    std::vector<LasRow> rows;
};

TEST_F(LasLayers, FilesOfOneGroupAndCodeShareALayer) {
    Add("a", 1);
    Add("b", 2);
    Add("a", 1);
    Add("a", 3);
    Add("x", 1, false);
    EXPECT_THAT(Assign({}, {}),
                ElementsAre(L"LAS Layer_1", L"LAS Layer_2", L"LAS Layer_1", L"LAS Layer_3", L""));
    EXPECT_EQ(rows[2].group, 1U);
    EXPECT_EQ(rows[3].group, 3U);
    EXPECT_EQ(rows[4].group, 0U);
}

TEST_F(LasLayers, NewNamesLeaveOutTheNumbersInUse) {
    Add("a", 1);
    Add("b", 2);
    Add("c", 3);
    const Layers existing{
        {L"LAS Layer_1", L""}, {L"las layer_3", L""}, {L"LAS Layer_04", L""}, {L"Other_2", L""}};
    EXPECT_THAT(Assign(existing, {.append = false, .ignoreCrs = false}),
                ElementsAre(L"LAS Layer_2", L"LAS Layer_4", L"LAS Layer_5"));
}

TEST_F(LasLayers, AppendingTakesTheFirstCompatibleLayerOfTheProject) {
    const std::wstring wkt = Wkt(25832);
    const CrsPtr crs = DescribeCrs(ToUtf8(wkt));
    ASSERT_EQ(crs->epsg, 25832);
    Add(crs->compatibilityGroup, crs->epsg);
    Add("other", 1);
    const Layers existing{{L"B roads", wkt}, {L"A roads", wkt}, {L"Dutch", Wkt(28992)}};
    EXPECT_THAT(Assign(existing, {}), ElementsAre(L"A roads", L"LAS Layer_1"));
    EXPECT_TRUE(rows[0].layerExists);
    EXPECT_FALSE(rows[1].layerExists);
    EXPECT_THAT(Assign(existing, {.append = false, .ignoreCrs = false}),
                ElementsAre(L"LAS Layer_1", L"LAS Layer_2"));
    EXPECT_FALSE(rows[0].layerExists);
}

TEST_F(LasLayers, FilesWithoutACrsGoIntoALayerWithoutOne) {
    const CrsPtr none = DescribeCrs({});
    Add(none->compatibilityGroup, none->epsg);
    EXPECT_THAT(Assign({{L"Local", L""}}, {}), ElementsAre(L"Local"));
}

TEST_F(LasLayers, IgnoringTheCrsPutsEverythingIntoOneLayer) {
    const std::wstring wkt = Wkt(25832);
    const CrsPtr crs = DescribeCrs(ToUtf8(wkt));
    Add("other", 1);
    Add(crs->compatibilityGroup, crs->epsg);
    const Layers existing{{L"A", Wkt(28992)}, {L"B", wkt}};
    EXPECT_THAT(Assign(existing, {.append = true, .ignoreCrs = true}), ElementsAre(L"B", L"B"));
    EXPECT_THAT(Assign({{L"A", Wkt(28992)}}, {.append = true, .ignoreCrs = true}), ElementsAre(L"A", L"A"));
    EXPECT_THAT(Assign(existing, {.append = false, .ignoreCrs = true}),
                ElementsAre(L"LAS Layer_1", L"LAS Layer_1"));
    EXPECT_THAT(Assign({}, {.append = true, .ignoreCrs = true}), ElementsAre(L"LAS Layer_1", L"LAS Layer_1"));
}

}  // namespace
}  // namespace orvex
