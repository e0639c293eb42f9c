// What the shipped tables must keep, whoever adds a line.
#include <gtest/gtest.h>

#include <algorithm>
#include <charconv>
#include <filesystem>
#include <map>
#include <set>

#include "host/strings/EmbeddedTables.h"
#include "host/strings/StringTable.h"
#include "support/Format.h"
#include "support/Text.h"
#include "support/testing/TemporaryFolder.h"

namespace orvex {
namespace {

using Texts = std::map<unsigned, StringEntry>;

Texts TextsOf(Language language) {
    Texts texts;
    for (StringEntry& entry : ParseStringTable(EmbeddedTable(language)).entries) {
        const unsigned id = entry.id;
        texts.emplace(id, std::move(entry));
    }
    return texts;
}

const char* NameOf(Language language) {
    return language == Language::kGerman ? "strings.de.tsv" : "strings.en.tsv";
}

constexpr Language kLanguages[] = {Language::kEnglish, Language::kGerman};

TEST(Tables, HaveNoMalformedLine) {
    for (const Language language : kLanguages) {
        const StringTable table = ParseStringTable(EmbeddedTable(language));
        EXPECT_GT(table.entries.size(), 50U);
        for (const StringTableProblem& problem : table.problems) {
            ADD_FAILURE() << NameOf(language) << ":" << problem.line << ": " << problem.reason;
        }
    }
}

TEST(Tables, HoldTheSameIds) {
    const Texts english = TextsOf(Language::kEnglish);
    const Texts german = TextsOf(Language::kGerman);
    for (const auto& [id, entry] : english) {
        EXPECT_TRUE(german.contains(id)) << "strings.de.tsv lacks " << id << ": " << entry.text;
    }
    for (const auto& [id, entry] : german) {
        EXPECT_TRUE(english.contains(id)) << "strings.en.tsv lacks " << id << ": " << entry.text;
    }
}

TEST(Tables, TranslationsKeepPlaceholdersAndLines) {
    const Texts german = TextsOf(Language::kGerman);
    for (const auto& [id, entry] : TextsOf(Language::kEnglish)) {
        const auto other = german.find(id);
        if (other == german.end()) {
            continue;
        }
        const std::string& text = other->second.text;
        EXPECT_EQ(ConversionsOf(FromUtf8(text)), ConversionsOf(FromUtf8(entry.text))) << id << ": " << text;
        EXPECT_EQ(std::ranges::count(text, '\n'), std::ranges::count(entry.text, '\n')) << id << ": " << text;
        EXPECT_EQ(text.ends_with(':'), entry.text.ends_with(':')) << id << ": " << text;
        EXPECT_EQ(text.ends_with("..."), entry.text.ends_with("...")) << id << ": " << text;
    }
}

void ExpectTidy(const std::string& text, const std::string& where) {
    constexpr const char* kBlanks = " \t\n";
    EXPECT_EQ(text.find_first_not_of(kBlanks), 0U) << where;
    EXPECT_EQ(text.find_last_not_of(kBlanks), text.size() - 1) << where;
    EXPECT_EQ(text.find("  "), std::string::npos) << where;
    for (const wchar_t character : FromUtf8(text)) {
        EXPECT_FALSE(character >= 0xD800 && character <= 0xDFFF) << "not UTF-8: " << where;
    }
}

TEST(Tables, TextsAreTidy) {
    for (const Language language : kLanguages) {
        for (const auto& [id, entry] : TextsOf(language)) {
            ExpectTidy(entry.text,
                       std::string(NameOf(language)) + " " + std::to_string(id) + ": " + entry.text);
        }
    }
}

// The placeholders that the callers fill, and the room that a text has where a fixed buffer takes it.
TEST(Tables, FormatsTakeWhatTheirCallersPass) {
    struct Case {
        unsigned id;
        const char* conversions;
        std::size_t room;
    };
    const Case cases[] = {
        {792, "s", 515},    {794, "s", 515},   {13656, "d", 512}, {13662, "dd", 256}, {13663, "dd", 256},
        {13678, "dd", 256}, {3312, "dd", 256}, {13636, "s", 260}, {3252, "s", 512},   {3245, "s", 1024},
        {13643, "", 255},   {3239, "", 255},   {3320, "", 255},   {3214, "", 256},    {13647, "", 256},
        {13556, "", 512},   {7669, "", 512},   {10048, "", 512},  {3228, "", 256},
    };
    for (const Language language : kLanguages) {
        const Texts texts = TextsOf(language);
        for (const Case& c : cases) {
            const auto found = texts.find(c.id);
            ASSERT_NE(found, texts.end()) << NameOf(language) << " " << c.id;
            const std::wstring text = FromUtf8(found->second.text);
            EXPECT_EQ(ConversionsOf(text), c.conversions) << NameOf(language) << " " << c.id;
            EXPECT_LT(text.size(), c.room) << NameOf(language) << " " << c.id;
        }
    }
}

// Only formats may hold a conversion: a caller that shows a text as it is would show "%d".
TEST(Tables, OnlyFormatsHoldConversions) {
    const std::set<unsigned> formats = {792, 794, 13656, 13662, 13663, 13678, 3312, 13636, 3252, 3245};
    for (const auto& [id, entry] : TextsOf(Language::kEnglish)) {
        const bool ownRange = id >= 40000 && id < 60000;
        EXPECT_TRUE(ownRange || formats.contains(id) || ConversionsOf(FromUtf8(entry.text)).empty())
            << id << ": " << entry.text;
    }
}

bool IsSource(const std::filesystem::path& path) {
    return path.extension() == ".cpp" || path.extension() == ".h";
}

bool IsSkippedFolder(const std::filesystem::path& path) {
    const std::string name = path.filename().string();
    return name == "tests" || name == "build" || name.starts_with('.');
}

// The numbers written as text::kLasTab.
std::set<unsigned> IdsIn(const std::string& source) {
    constexpr std::string_view kSuffix = "_lsid";
    std::set<unsigned> ids;
    for (std::size_t at = source.find(kSuffix); at != std::string::npos; at = source.find(kSuffix, at + 1)) {
        std::size_t start = at;
        while (start > 0 && source[start - 1] >= '0' && source[start - 1] <= '9') {
            --start;
        }
        unsigned id = 0;
        std::from_chars(source.data() + start, source.data() + at, id);
        if (id != 0) {
            ids.insert(id);
        }
    }
    return ids;
}

TEST(Tables, HoldEveryIdThatTheCodeUses) {
    const Texts english = TextsOf(Language::kEnglish);
    const Texts german = TextsOf(Language::kGerman);
    std::size_t files = 0;
    auto walk = std::filesystem::recursive_directory_iterator(ORVEX_SOURCE_DIR);
    for (auto entry = begin(walk); entry != end(walk); ++entry) {
        if (entry->is_directory()) {
            if (IsSkippedFolder(entry->path())) {
                entry.disable_recursion_pending();
            }
        } else if (IsSource(entry->path())) {
            ++files;
            for (const unsigned id : IdsIn(testing::ReadFile(FromPath(entry->path())))) {
                EXPECT_TRUE(english.contains(id) && german.contains(id)) << entry->path() << " uses " << id;
            }
        }
    }
    EXPECT_GT(files, 30U);
}

}  // namespace
}  // namespace orvex
