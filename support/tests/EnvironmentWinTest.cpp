#include <gmock/gmock.h>

#include "support/Environment.h"
#include "support/Files.h"
#include "support/Log.h"
#include "support/Text.h"
#include "support/testing/TemporaryFolder.h"
#include "support/testing/TestSystem.h"

namespace orvex {
namespace {

using ::testing::HasSubstr;
using testing::Variable;
using Setting = std::optional<std::wstring>;

TEST(Environment, ValuesAreUnicodeOfAnyLength) {
    const std::wstring name = L"ORVEX_TEST_ä";
    for (const std::wstring& value : {std::wstring(255, L'ü'), std::wstring(20000, L'ü'), std::wstring()}) {
        const Variable variable(name, value);
        EXPECT_EQ(EnvironmentVariable(name), value);
    }
    EXPECT_EQ(EnvironmentVariable(name), std::nullopt);
}

// A user's name can be anything, and so can the length of a redirected profile's path. The log is opened once
// in a process, so that this is the only test of it here.
TEST(Log, LiesInTheUsersFolderWhateverItsName) {
    const testing::TemporaryFolder folder;
    const std::wstring profile =
        folder.Name(L"Jörg 日本\\" + std::wstring(200, L'x') + L"\\" + std::wstring(100, L'y'));
    const Variable local(L"LOCALAPPDATA", profile);
    const Variable named(L"ORVEX_LOG", std::nullopt);
    LogInfo(L"a line with ä and \U0001F600");
    const std::wstring file = profile + L"\\Orvex\\orvex.log";
    ASSERT_TRUE(FileExists(file));
    EXPECT_THAT(testing::ReadFile(file), HasSubstr(ToUtf8(L"a line with ä and \U0001F600")));
}

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
    const Variable moved(L"ORVEX_MACHINE_CONFIG_DIR", L"E:\\elsewhere");
    EXPECT_EQ(MachineConfigFolder().native(), L"E:\\elsewhere");
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
