#include <gtest/gtest.h>

#include "settings/ConfigFolder.h"
#include "support/testing/Variable.h"

namespace orvex {
namespace {

using testing::Variable;
using Setting = std::optional<std::wstring>;

TEST(ConfigFolder, FollowsTheEnvironment) {
    const struct {
        Setting own, xdg, home;
        const char* expected;
    } cases[] = {
        {L"/own", L"/xdg", L"/home/me", "/own"},
        {std::nullopt, L"/xdg", L"/home/me", "/xdg/orvex"},
        {L"", L"relative", L"/home/me", "/home/me/.config/orvex"},
        {std::nullopt, std::nullopt, L"/home/me", "/home/me/.config/orvex"},
    };
    for (const auto& c : cases) {
        const Variable own(L"ORVEX_CONFIG_DIR", c.own);
        const Variable xdg(L"XDG_CONFIG_HOME", c.xdg);
        const Variable home(L"HOME", c.home);
        EXPECT_EQ(UserConfigFolder(), c.expected);
    }
    const Variable machine(L"ORVEX_MACHINE_CONFIG_DIR", std::nullopt);
    EXPECT_EQ(MachineConfigFolder(), "/etc/orvex");
    const Variable moved(L"ORVEX_MACHINE_CONFIG_DIR", L"/elsewhere");
    EXPECT_EQ(MachineConfigFolder(), "/elsewhere");
}

}  // namespace
}  // namespace orvex
