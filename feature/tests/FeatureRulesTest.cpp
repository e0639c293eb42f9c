// Which files the page loads, and under which keys.
#include <gmock/gmock.h>

#include <map>

#include "feature/FeatureRow.h"
#include "support/Format.h"
#include "support/Text.h"

namespace orvex {
namespace {

using Names = std::vector<std::wstring>;

constexpr const char* kWkt =
    "GEOGCS[\"WGS 84\",DATUM[\"WGS_1984\",SPHEROID[\"WGS 84\",6378137,298.257223563]],"
    "PRIMEM[\"Greenwich\",0],UNIT[\"degree\",0.0174532925199433]]";

FeatureRow Row(const std::wstring& path, const std::string& wkt = kWkt) {
    FeatureRow row;
    row.path = path;
    row.kind = FeatureKindOf(path).value();
    row.isRead = row.loadable = true;
    row.crs = DescribeCrs(wkt);
    row.summary = FeatureSummary(row);
    return row;
}

Names Keys(const std::vector<FeatureRow>& rows) {
    Names keys;
    for (const FeatureRow& row : rows) {
        keys.push_back(row.place.layer);
    }
    return keys;
}

TEST(FeatureRules, EveryLoadableFileGetsAKeyOfItsOwn) {
    std::vector<FeatureRow> rows;
    for (const wchar_t* path : {L"/a/roads.dxf", L"/a/roads.shp", L"/b/ROADS.SHP", L"/b/Roads (2).kml",
                                L"/c/roads.v2.dwg", L"/c/unread.dgn", L"/d/roads (2).dgn"}) {
        rows.push_back(Row(path));
    }
    rows[5] = UnreadFeatureFile(rows[5].path, L"no");
    const std::map<std::wstring, std::wstring> none;
    ApplyFeatureRules(rows, {none, false});
    const Names expected{L"roads",    L"roads (2)", L"ROADS (3)",    L"Roads (2) (2)",
                         L"roads.v2", L"",          L"roads (2) (3)"};
    EXPECT_EQ(Keys(rows), expected);
    ApplyFeatureRules(rows, {none, false});
    EXPECT_EQ(Keys(rows), expected) << "the same again";
}

TEST(FeatureRules, FollowFromWhatWasReadWhateverTheyWereBefore) {
    std::vector<FeatureRow> rows{Row(L"/a/known.shp"), Row(L"/a/bare.shp", ""),   Row(L"/a/bare.dxf", ""),
                                 Row(L"/a/Known.shp"), Row(L"/a/odd.shp", "odd"), Row(L"/a/known.dwg")};
    rows[1].findings = {{FindingSeverity::Note, L"no CRS", "no-crs"}};
    rows[1].place.inProject = true;
    const std::map<std::wstring, std::wstring> none;
    const std::map<std::wstring, std::wstring> existing{{L"known", L""}, {L"bare", L""}};
    const std::wstring exists = FormatText(Text(text::kFeatureLayerExists), {L"known"});
    const std::wstring bareExists = FormatText(Text(text::kFeatureLayerExists), {L"bare"});
    const std::wstring noCrs = Text(text::kFeatureWithoutCrs);
    const std::wstring fine = FeatureSummary(rows[0]);
    const struct {
        const std::map<std::wstring, std::wstring>& layers;
        bool requireCrs;
        Names summaries;
        std::size_t findings;  ///< of the second row
    } rounds[] = {
        {none, false, {fine, fine, fine, fine, fine, fine}, 1},
        {none, true, {fine, noCrs, noCrs, fine, noCrs, fine}, 2},
        {existing, true, {exists, noCrs, noCrs, fine, noCrs, fine}, 3},
        {existing, false, {exists, bareExists, fine, fine, fine, fine}, 2},
        {none, false, {fine, fine, fine, fine, fine, fine}, 1},
    };
    for (const auto& round : rounds) {
        ApplyFeatureRules(rows, {round.layers, round.requireCrs});
        for (std::size_t i = 0; i < rows.size(); ++i) {
            EXPECT_EQ(rows[i].summary, round.summaries[i]) << i;
            EXPECT_EQ(rows[i].loadable, round.summaries[i] == fine) << i;
            EXPECT_EQ(rows[i].place.layer.empty(), !rows[i].loadable) << i;
        }
        EXPECT_EQ(rows[1].findings.size(), round.findings);
        EXPECT_EQ(rows[1].findings.back().text, L"no CRS");
        EXPECT_TRUE(rows[1].place.inProject);
    }
}

}  // namespace
}  // namespace orvex
