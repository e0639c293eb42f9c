#include <gtest/gtest.h>
#include <windows.h>

#include "host/strings/Language.h"

namespace orvex {
namespace {

TEST(Language, IsTheDesktopsUnlessTheProductsOwnVariableSaysAnother) {
    const auto saying = [](const std::string& value) {
        return UserLocaleName([value](const char* name) {
            return std::string(name) == "ORVEX_LANGUAGE" ? value : std::string("de_DE");
        });
    };
    EXPECT_EQ(saying("de"), "de");
    EXPECT_EQ(saying("en"), "en");
    // A tag such as "en-US", not what the variables of another system say.
    EXPECT_NE(saying(""), "");
    EXPECT_NE(saying(""), "de_DE");
}

TEST(Language, KnowsWhatTheProcessHasSetForItself) {
    const Environment environment = ProcessEnvironment();
    EXPECT_EQ(environment("ORVEX_LANGUAGE_TEST"), "");
    SetEnvironmentVariableW(L"ORVEX_LANGUAGE_TEST", L"de");
    EXPECT_EQ(environment("ORVEX_LANGUAGE_TEST"), "de");
    SetEnvironmentVariableW(L"ORVEX_LANGUAGE_TEST", std::wstring(300, L'd').c_str());
    EXPECT_EQ(environment("ORVEX_LANGUAGE_TEST"), "");
    SetEnvironmentVariableW(L"ORVEX_LANGUAGE_TEST", nullptr);
}

}  // namespace
}  // namespace orvex
