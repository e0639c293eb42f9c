#include "orvexcommon/StringLibrary.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <string_view>
#include <thread>
#include <vector>

#include "host/strings/EmbeddedTables.h"
#include "host/strings/StringTable.h"
#include "support/Text.h"

// The library chooses its language once per process, from whatever the tests are run under.
namespace orvex {
namespace {

std::vector<unsigned> reported;

class StringLibrary : public testing::Test {
  protected:
    void SetUp() override {
        reported.clear();
        previous_ = LSSetMissingIdHandler([](unsigned id) { reported.push_back(id); });
    }
    void TearDown() override { LSSetMissingIdHandler(previous_); }

  private:
    LSMissingIdHandler previous_ = nullptr;
};

TEST(Language, FollowsTheLanguageOfALocaleName) {
    for (const char* name : {"de", "DE", "de_DE", "de_DE.UTF-8", "de-AT", "de_CH@euro", "de.UTF-8"}) {
        EXPECT_EQ(LanguageOf(name), Language::kGerman) << name;
    }
    for (const char* name :
         {"", "C", "POSIX", "C.UTF-8", "en", "en_GB.UTF-8", "fr_DE", "den", "d", "nds_DE", "_de", "1de"}) {
        EXPECT_EQ(LanguageOf(name), Language::kEnglish) << name;
    }
}

TEST_F(StringLibrary, GivesEveryTextOfTheUsersLanguage) {
    for (const StringEntry& entry : ParseStringTable(EmbeddedTable(UserLanguage())).entries) {
        EXPECT_EQ(LSwchar(entry.id), FromUtf8(entry.text)) << entry.id;
    }
    EXPECT_TRUE(reported.empty());
}

TEST_F(StringLibrary, FollowsTheProductsVariable) {
    const char* language = std::getenv("ORVEX_LANGUAGE");
    ASSERT_NE(language, nullptr) << "run this through ctest, which runs it once per language";
    EXPECT_STREQ(LSwchar(text::kCancel.value), language == std::string_view("de") ? L"Abbrechen" : L"Cancel");
}

TEST_F(StringLibrary, NamesAnUnknownIdAndReportsItOnce) {
    const wchar_t* first = LSwchar(900001);
    EXPECT_STREQ(first, L"#900001");
    EXPECT_EQ(LSwchar(900001), first);
    EXPECT_EQ(LSIDwchar(900001), L"#900001");
    EXPECT_STREQ(LSwchar(0), L"#0");
    EXPECT_STREQ(LSwchar(4294967295U), L"#4294967295");
    EXPECT_EQ(reported, (std::vector<unsigned>{900001, 0, 4294967295U}));
}

TEST_F(StringLibrary, AHandlerMayAskForTextsItself) {
    LSSetMissingIdHandler([](unsigned id) {
        if (id < 900110) {
            LSwchar(id + 1);
        }
        LSwchar(id);
        reported.push_back(id);
    });
    LSwchar(900107);
    EXPECT_EQ(reported, (std::vector<unsigned>{900110, 900109, 900108, 900107}));
}

TEST_F(StringLibrary, PointersStayTheSameForEveryThread) {
    constexpr unsigned kFirst = 900200;
    constexpr unsigned kCount = 500;
    LSSetMissingIdHandler([](unsigned) {});
    std::vector<std::vector<const wchar_t*>> seen(4);
    std::vector<std::thread> threads;
    threads.reserve(seen.size());
    for (auto& pointers : seen) {
        threads.emplace_back([&pointers] {
            for (unsigned i = 0; i < kCount; ++i) {
                pointers.push_back(LSwchar(kFirst + i));
            }
            pointers.push_back(LSwchar(text::kLasTab.value));
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    for (const auto& pointers : seen) {
        EXPECT_EQ(pointers, seen[0]);
    }
    for (unsigned i = 0; i < kCount; ++i) {
        EXPECT_EQ(seen[0][i], L"#" + std::to_wstring(kFirst + i));
    }
}

}  // namespace
}  // namespace orvex
