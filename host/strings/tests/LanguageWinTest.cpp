#include <gtest/gtest.h>

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

}  // namespace
}  // namespace orvex
