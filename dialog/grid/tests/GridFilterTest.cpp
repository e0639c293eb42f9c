#include "dialog/grid/GridFilter.h"

#include <gmock/gmock.h>

#include "dialog/grid/tests/SampleModel.h"
#include "support/Format.h"

namespace orvex::testing {
namespace {

using ::testing::ElementsAreArray;
using Names = std::vector<std::wstring>;

const std::vector<int> kShown = {kFlag, kName, kSize, kModified, kSummary, kMore};

Names Kept(const SampleModel& model, const GridFilter& filter) {
    Names names;
    for (std::size_t record = 0; record < model.Records(); ++record) {
        if (filter.Keeps(record)) {
            names.push_back(model.Rows()[record].name);
        }
    }
    return names;
}

struct FilterCase {
    const wchar_t* text;
    Names kept;
    std::wstring problem = {};  ///< its beginning, without the columns that it lists
};

std::wstring Problem(StringId id, const wchar_t* typed) {
    return FormatText(Text(id), {typed});
}

TEST(GridFilterTest, KeepsWhatWasTyped) {
    SampleModel model;
    constexpr std::int64_t kDay = 86'400'000;
    model.Append({{L"Berlin 1", 0.5, 19'000 * kDay, true, L"EPSG:25832"},
                  {L"berlin 2", 1.004, 19'400 * kDay, true, L"EPSG:25833"},
                  {L"K\u00f6ln=3", 2e6, {}, true, L"Local"},
                  {L"x", kNaN, {}, true, L""}});
    const Names all = {L"Berlin 1", L"berlin 2", L"K\u00f6ln=3", L"x"};
    const std::wstring size = Text(text::kGridSelectAll);
    const FilterCase cases[] = {
        {L"", all},
        {L"  ", all},
        {L"-", all},
        {L"BERLIN", {L"Berlin 1", L"berlin 2"}},
        {L"k\u00d6LN", {L"K\u00f6ln=3"}},
        {L"erl 2", {L"Berlin 1", L"berlin 2"}},
        {L"\"lin 2\"", {L"berlin 2"}},
        {L"\"lin 2", {L"berlin 2"}},
        {L"-berlin", {L"K\u00f6ln=3", L"x"}},
        {L"berlin -\"lin 1\"", {L"berlin 2"}},
        {L"/data", {}},  // the path is not shown
        {L"\"ln=3\"", {L"K\u00f6ln=3"}},
        {L"2000000.00", {L"K\u00f6ln=3"}},
        {L"size < 1", {L"Berlin 1"}},
        {L"size>1e6", {L"K\u00f6ln=3"}},
        {L"size >= 2,000,000", {L"K\u00f6ln=3"}},
        {L"SIZE <= 0,5", {L"Berlin 1"}},
        {L"-size < 1", {L"berlin 2", L"K\u00f6ln=3", L"x"}},
        {L"size = 1", {L"berlin 2"}},  // as shown, 1.00
        {L"size != 1", {L"Berlin 1", L"K\u00f6ln=3", L"x"}},
        {L"size = \"\"", {L"x"}},
        {L"si > 1 berlin", {L"berlin 2"}},
        {L"crs = 25832", {L"Berlin 1"}},
        {L"crs=epsg:25832", {L"Berlin 1"}},
        {L"crs > 25832", {L"berlin 2", L"K\u00f6ln=3"}},  // texts after numbers
        {L"crs != local", {L"Berlin 1", L"berlin 2", L"x"}},
        {L"more = LOCAL", {L"K\u00f6ln=3"}},
        {L"name = \"berlin 2\"", {L"berlin 2"}},
        {L"name > \"berlin 1\" name < \"berlin 10\"", {L"berlin 2"}},
        {L"modified < 2023", {L"Berlin 1"}},
        {L"path = /data/x", {L"x"}},
        {L"width > 3", all, Problem(text::kFilterNoColumn, L"width")},
        {L"berlin width > 3", {L"Berlin 1", L"berlin 2"}, Problem(text::kFilterNoColumn, L"width")},
        {L"details = 3", all, Problem(text::kFilterNoColumn, L"details")},
        {L"m > 3", all, Problem(text::kFilterSeveralColumns, L"m")},
        {L"size >", all, Problem(text::kFilterValueMissing, L"size >")},
        {L"size > big", all, Problem(text::kFilterNoNumber, L"big")},
        {L"> 3", all, Problem(text::kFilterNameMissing, L">")},
    };
    for (const FilterCase& c : cases) {
        SCOPED_TRACE(ToUtf8(c.text));
        const GridFilter filter(c.text, model, kShown);
        EXPECT_THAT(Kept(model, filter), ElementsAreArray(c.kept));
        EXPECT_EQ(filter.Problem().substr(0, c.problem.size()), c.problem);
        EXPECT_EQ(filter.Problem().empty(), c.problem.empty());
        EXPECT_EQ(filter.IsEmpty(), c.kept == all);
    }
    EXPECT_EQ(GridFilter((L"\"" + size + L"\" < 1").c_str(), model, kShown).Problem(), L"") << "a caption";
}

// The texts that were read for a search stay with their records, and are read anew where these change.
TEST(GridFilterTest, FollowsTheRecords) {
    SampleModel model;
    model.AddNames({L"a1", L"b1", L"a2", L"b2"});
    const GridFilter filter(L"a", model, {kName});
    EXPECT_THAT(Kept(model, filter), ElementsAreArray({L"a1", L"a2"}));
    model.AddNames({L"a3", L"b3"});
    EXPECT_THAT(Kept(model, filter), ElementsAreArray({L"a1", L"a2", L"a3"}));
    model.Remove({0, 3});
    EXPECT_THAT(Kept(model, filter), ElementsAreArray({L"a2", L"a3"}));
    model.Replace(0, {L"now a", 1.0});
    EXPECT_THAT(Kept(model, filter), ElementsAreArray({L"now a", L"a2", L"a3"}));
    model.Permute({3, 2, 1, 0});
    EXPECT_THAT(Kept(model, filter), ElementsAreArray({L"a3", L"a2", L"now a"}));
    model.Clear();
    model.AddNames({L"b", L"a"});
    EXPECT_THAT(Kept(model, filter), ElementsAreArray({L"a"}));
    while (model.PrepareSearch(kShown, 1)) {
    }
    model.cellsAsked = 0;
    EXPECT_THAT(Kept(model, GridFilter(L"b", model, kShown)), ElementsAreArray({L"b"}));
    EXPECT_EQ(model.cellsAsked, 0U) << "all was read before";
}

}  // namespace
}  // namespace orvex::testing
