#include "host/vector/ShapefileNames.h"

#include <gtest/gtest.h>

#include "support/Text.h"
#include "support/testing/TemporaryFolder.h"

namespace orvex {
namespace {

TEST(ShapefileNames, EverySystemAcceptsThem) {
    struct Case {
        std::wstring file;
        std::wstring layer;
        std::wstring name;
    };
    const std::wstring longName(300, L'\u00E4');
    const Case cases[] = {
        {L"plan", L"WALLS", L"plan_WALLS_points"},
        {L"plan", L"", L"plan_points"},
        {L"plan", L"PLAN", L"plan_points"},
        {L"plan", L"  ", L"plan_points"},
        {L"plan", L" a ", L"plan_a_points"},
        {L"plan", L"a/b\\c:d*e?f\"g<h>i|j", L"plan_a_b_c_d_e_f_g_h_i_j_points"},
        {L"plan", L"a\tb\nc\x7F", L"plan_a_b_c__points"},
        {L"plan", L"..", L"plan_.._points"},
        {L"plan", FromUtf8("\xFFz"), L"plan__z_points"},
        {L"Gel\u00E4nde \u00DF", L"\u9053\u8DEF", L"Gel\u00E4nde \u00DF_\u9053\u8DEF_points"},
        {L"con.x", L"0", L"_con.x_0_points"},
        {L"Com1.a", L"", L"_Com1.a_points"},
        {L"lpt\u00B9.a", L"", L"_lpt\u00B9.a_points"},
        {L"aux .a", L"", L"_aux .a_points"},
        {L"con", L"0", L"con_0_points"},
        {L"com10.a", L"", L"com10.a_points"},
        {L".hidden", L"", L"_hidden_points"},
        {L"plan", longName, L"plan_" + std::wstring(50, L'\u00E4') + L"_points"},
    };
    for (const Case& c : cases) {
        EXPECT_EQ(ToUtf8(ShapefileName(c.file, c.layer, L"points")), ToUtf8(c.name));
    }
    EXPECT_LE(ToUtf8(ShapefileName(longName, longName, L"polygons") + L" (100000).shp").size(), 255U);
}

TEST(ShapefileNames, ATakenNameIsFoundInAnyLetterCaseAndByAnyPart) {
    const testing::TemporaryFolder folder;
    folder.Write(L"Plan_points.DBF", "");
    folder.Write(L"roads.shp.xml", "");
    folder.Write(L"lines.txt", "");
    TakenNames taken(FromPath(folder.Path()));
    EXPECT_EQ(taken.FreeName(L"plan_points"), L"plan_points (2)");
    EXPECT_EQ(taken.FreeName(L"ROADS"), L"ROADS (2)");
    EXPECT_EQ(taken.FreeName(L"lines"), L"lines");
    taken.Add(L"Lines");
    taken.Add(L"lines (2)");
    EXPECT_EQ(taken.FreeName(L"LINES"), L"LINES (3)");
}

TEST(ShapefileNames, FieldNamesAreShortDifferAndBeginWithALetter) {
    struct Case {
        std::vector<std::string> names;
        std::vector<std::string> safe;
    };
    const Case cases[] = {
        {{"Layer", "PaperSpace", "EntityHandle"}, {"Layer", "PaperSpace", "EntityHand"}},
        {{"EntityHandle", "EntityHand", "entityhandles"}, {"EntityHand", "EntityHa_1", "entityha_2"}},
        {{"a b", "a-b", "1st", "_x", ""}, {"a_b", "a_b_1", "F1st", "F_x", "F"}},
        {{"Stra\u00DFenn\u00E4"}, {"Stra\u00DFenn"}},
        {{"\xFF\xFE"}, {"\xEF\xBF\xBD\xEF\xBF\xBD"}},
    };
    for (const Case& c : cases) {
        EXPECT_EQ(SafeFieldNames(c.names), c.safe);
    }
    const std::vector<std::string> many = SafeFieldNames(std::vector<std::string>(300, "description"));
    EXPECT_EQ(many.back(), "descri_299");
}

}  // namespace
}  // namespace orvex
