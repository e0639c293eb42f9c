#include <gtest/gtest.h>

#include "settings/ConfigFolder.h"
#include "support/testing/Variable.h"

namespace orvex {
namespace {

using testing::Variable;
using Setting = std::optional<std::wstring>;

TEST(ConfigFolder, FollowsTheEnvironment) {
    const struct {
        Setting own, appData;
        const wchar_t* expected;
    } cases[] = {
        {L"D:\\Größe \u0416", L"C:\\AppData", L"D:\\Größe \u0416"},
        {std::nullopt, L"C:\\Users\\Jürgen\\AppData", L"C:\\Users\\Jürgen\\AppData\\Orvex"},
        {L"", L"C:\\AppData", L"C:\\AppData\\Orvex"},
    };
    for (const auto& c : cases) {
        const Variable own(L"ORVEX_CONFIG_DIR", c.own);
        const Variable appData(L"APPDATA", c.appData);
        EXPECT_EQ(UserConfigFolder().native(), c.expected);
    }
    const Variable machine(L"ORVEX_MACHINE_CONFIG_DIR", std::nullopt);
    const Variable programData(L"ProgramData", L"D:\\ProgramData");
    EXPECT_EQ(MachineConfigFolder().native(), L"D:\\ProgramData\\Orvex");
    const Variable moved(L"ORVEX_MACHINE_CONFIG_DIR", L"E:\\elsewhere");
    EXPECT_EQ(MachineConfigFolder().native(), L"E:\\elsewhere");
}

TEST(ConfigFolder, IsTheProfilesWithoutAnEnvironment) {
    const Variable own(L"ORVEX_CONFIG_DIR", std::nullopt);
    const Variable machine(L"ORVEX_MACHINE_CONFIG_DIR", std::nullopt);
    const auto user = UserConfigFolder();
    const auto everybody = MachineConfigFolder();
    for (const auto& useless : {Setting(), Setting(L""), Setting(L"relative"), Setting(L"\\no drive")}) {
        const Variable appData(L"APPDATA", useless);
        const Variable programData(L"ProgramData", useless);
        EXPECT_EQ(UserConfigFolder(), user);
        EXPECT_EQ(MachineConfigFolder(), everybody);
    }
    EXPECT_TRUE(user.is_absolute() && everybody.is_absolute());
    EXPECT_EQ(user.filename(), L"Orvex");
    EXPECT_NE(user, everybody);
}

}  // namespace
}  // namespace orvex
