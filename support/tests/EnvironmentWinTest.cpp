#include <gtest/gtest.h>

#include "support/Environment.h"
#include "support/testing/TestSystem.h"

namespace orvex {
namespace {

using testing::Variable;
using Setting = std::optional<std::wstring>;

TEST(Environment, NamesTheSettingsFolders) {
    const struct {
        Setting own, appData;
        const wchar_t* expected;
    } cases[] = {
        {L"D:\\Größe \u0416", L"C:\\AppData", L"D:\\Größe \u0416"},
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
}

TEST(Environment, SettingsFoldersAreTheProfilesWithoutAnEnvironment) {
    const Variable own(L"ORVEX_CONFIG_DIR", std::nullopt);
    const Variable machine(L"ORVEX_MACHINE_CONFIG_DIR", std::nullopt);
    const auto user = UserConfigFolder();
    const auto everybody = MachineConfigFolder();
    for (const auto& useless : {Setting(), Setting(L"relative"), Setting(L"\\no drive")}) {
        const Variable appData(L"APPDATA", useless);
        const Variable programData(L"ProgramData", useless);
        EXPECT_EQ(UserConfigFolder(), user);
        EXPECT_EQ(MachineConfigFolder(), everybody);
    }
    EXPECT_TRUE(user.is_absolute() && everybody.is_absolute() && user != everybody);
}

}  // namespace
}  // namespace orvex
