// What the shipped tables must keep, whoever adds a line.
#include <gtest/gtest.h>

#include <algorithm>
#include <map>

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

TEST(Tables, TranslationsHaveTheSameIdsPlaceholdersAndLines) {
    const Texts english = TextsOf(Language::kEnglish);
    const Texts german = TextsOf(Language::kGerman);
    EXPECT_EQ(german.size(), english.size());
    for (const auto& [id, entry] : english) {
        const auto other = german.find(id);
        if (other == german.end()) {
            ADD_FAILURE() << "strings.de.tsv lacks " << id << ": " << entry.text;
            continue;
        }
        const std::string& text = other->second.text;
        EXPECT_EQ(ConversionsOf(FromUtf8(text)), ConversionsOf(FromUtf8(entry.text))) << id << ": " << text;
        EXPECT_EQ(std::ranges::count(text, '\n'), std::ranges::count(entry.text, '\n')) << id << ": " << text;
        EXPECT_EQ(text.ends_with(':'), entry.text.ends_with(':')) << id << ": " << text;
        EXPECT_EQ(text.ends_with("..."), entry.text.ends_with("...")) << id << ": " << text;
    }
}

// The placeholders that the callers fill, and the room that a text has where a fixed buffer takes it. A
// caller that shows any other text as it is would show a "%d" in it.
TEST(Tables, FormatsTakeWhatTheirCallersPass) {
    struct Format {
        const char* conversions;
        std::size_t room;
    };
    const std::map<unsigned, Format> formats = {
        {text::kVlrReadFailed.value, {"s", 515}},
        {text::kLasHeaderReadFailed.value, {"s", 515}},
        {text::kLasManyFilesQuestion.value, {"d", 512}},
        {text::kLasReadingProgress.value, {"dd", 256}},
        {text::kRasterReadingProgress.value, {"dd", 256}},
        {text::kFeatureReadingProgress.value, {"dd", 256}},
        {text::kPhotoReadingProgress.value, {"dd", 256}},
        {text::kPhotoMetadataItemFailed.value, {"s", 260}},
        {text::kFeatureLayerExists.value, {"s", 512}},
        {text::kFeatureOutputFolderRefused.value, {"s", 1024}},
    };
    for (const Language language : kLanguages) {
        const Texts texts = TextsOf(language);
        for (const auto& [id, entry] : texts) {
            const bool isFormatted = formats.contains(id) || (id >= 40000 && id < 60000);
            const std::wstring text = FromUtf8(entry.text);
            EXPECT_TRUE(isFormatted || ConversionsOf(text).empty()) << id << ": " << entry.text;
        }
        for (const auto& [id, format] : formats) {
            const std::wstring text = FromUtf8(texts.at(id).text);
            EXPECT_EQ(ConversionsOf(text), format.conversions) << NameOf(language) << " " << id;
            EXPECT_LT(text.size(), format.room) << NameOf(language) << " " << id;
        }
    }
}

}  // namespace
}  // namespace orvex
