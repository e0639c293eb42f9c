#include <gtest/gtest.h>

#include <map>

#include "host/strings/Language.h"

namespace orvex {
namespace {

TEST(Language, TakesTheFirstVariableThatSaysSomething) {
    struct Case {
        std::map<std::string, std::string> variables;
        const char* wanted;
    };
    const Case cases[] = {
        {{}, ""},
        {{{"LANG", "en_US"}, {"LC_MESSAGES", "de_DE"}}, "de_DE"},
        {{{"LANG", "en_US"}, {"LC_MESSAGES", "fr_FR"}, {"LC_ALL", "de_DE"}}, "de_DE"},
        {{{"LC_ALL", "de_DE"}, {"ORVEX_LANGUAGE", "en"}}, "en"},
        {{{"LC_ALL", "C"}, {"ORVEX_LANGUAGE", "de"}}, "de"},
        {{{"ORVEX_LANGUAGE", ""}, {"LC_ALL", ""}, {"LANG", "de"}}, "de"},
        {{{"LC_NUMERIC", "de_DE"}}, ""},
    };
    for (const Case& c : cases) {
        const Environment environment = [&c](const char* name) {
            const auto found = c.variables.find(name);
            return found == c.variables.end() ? std::string() : found->second;
        };
        EXPECT_EQ(UserLocaleName(environment), c.wanted);
    }
}

}  // namespace
}  // namespace orvex
