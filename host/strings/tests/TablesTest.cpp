// What the shipped tables must keep, whoever adds a line.
#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <regex>
#include <set>

#include "host/strings/EmbeddedTables.h"
#include "host/strings/StringTable.h"
#include "support/Format.h"
#include "support/Text.h"

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
        StringId id;
        const char* conversions;
        std::size_t room;
    };
    const Case cases[] = {
        {text::kVlrReadFailed, "s", 515},          {text::kLasHeaderReadFailed, "s", 515},
        {text::kLasManyFilesQuestion, "d", 512},   {text::kLasReadingProgress, "dd", 256},
        {text::kRasterReadingProgress, "dd", 256}, {text::kFeatureReadingProgress, "dd", 256},
        {text::kPhotoReadingProgress, "dd", 256},  {text::kPhotoMetadataItemFailed, "s", 260},
        {text::kFeatureLayerExists, "s", 512},     {text::kFeatureOutputFolderRefused, "s", 1024},
        {text::kRasterPickerTitle, "", 255},       {text::kDemPickerTitle, "", 255},
        {text::kPhotoPickerTitle, "", 255},        {text::kLasReopeningProgress, "", 256},
        {text::kFolderSearchProgress, "", 256},    {text::kLasSubfoldersQuestion, "", 512},
        {text::kThinningRefused, "", 512},         {text::kLasTooManySelected, "", 512},
        {text::kDemThinningMask, "", 256},
    };
    for (const Language language : kLanguages) {
        const Texts texts = TextsOf(language);
        for (const Case& c : cases) {
            const auto found = texts.find(c.id.value);
            ASSERT_NE(found, texts.end()) << NameOf(language) << " " << c.id.value;
            const std::wstring text = FromUtf8(found->second.text);
            EXPECT_EQ(ConversionsOf(text), c.conversions) << NameOf(language) << " " << c.id.value;
            EXPECT_LT(text.size(), c.room) << NameOf(language) << " " << c.id.value;
        }
    }
}

// Only formats may hold a conversion: a caller that shows a text as it is would show "%d".
TEST(Tables, OnlyFormatsHoldConversions) {
    const std::set<unsigned> formats = {
        text::kVlrReadFailed.value,         text::kLasHeaderReadFailed.value,
        text::kLasManyFilesQuestion.value,  text::kLasReadingProgress.value,
        text::kRasterReadingProgress.value, text::kFeatureReadingProgress.value,
        text::kPhotoReadingProgress.value,  text::kPhotoMetadataItemFailed.value,
        text::kFeatureLayerExists.value,    text::kFeatureOutputFolderRefused.value};
    for (const auto& [id, entry] : TextsOf(Language::kEnglish)) {
        const bool ownRange = id >= 40000 && id < 60000;
        EXPECT_TRUE(ownRange || formats.contains(id) || ConversionsOf(FromUtf8(entry.text)).empty())
            << id << ": " << entry.text;
    }
}

// A name that is no constant of the code would leave its text out of the generated header.
TEST(Tables, EveryTextHasANameOfItsOwn) {
    const std::regex constant("k[A-Z][A-Za-z0-9]*");
    std::set<std::string> names;
    for (const auto& [id, entry] : TextsOf(Language::kEnglish)) {
        EXPECT_TRUE(std::regex_match(entry.name, constant)) << id << ": " << entry.name;
        EXPECT_TRUE(names.insert(entry.name).second) << id << ": " << entry.name << " is there already";
    }
    for (const auto& [id, entry] : TextsOf(Language::kGerman)) {
        EXPECT_EQ(entry.name, "") << "strings.de.tsv " << id << ": names stand in the English table alone";
    }
}

}  // namespace
}  // namespace orvex
