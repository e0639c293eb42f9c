#include "host/strings/Language.h"

#include <gtest/gtest.h>

namespace orvex {
namespace {

TEST(Language, FollowsTheLanguageOfALocaleName) {
    for (const char* name : {"de", "DE", "de_DE", "de_DE.UTF-8", "de-AT", "de_CH@euro", "de.UTF-8"}) {
        EXPECT_EQ(LanguageOf(name), Language::kGerman) << name;
    }
    for (const char* name :
         {"", "C", "POSIX", "C.UTF-8", "en", "en_GB.UTF-8", "fr_DE", "den", "d", "nds_DE", "_de", "1de"}) {
        EXPECT_EQ(LanguageOf(name), Language::kEnglish) << name;
    }
}

}  // namespace
}  // namespace orvex
