#include "support/Text.h"

#include <gtest/gtest.h>

#include "support/Format.h"

namespace orvex {
namespace {

TEST(Text, WideAndUtf8AreLosslessBothWays) {
    const std::string cases[] = {"", "plain", "\xC3\xA4\xE2\x82\xAC", "\xF0\x9F\x98\x80",
                                 "bad \xFF\xC3 tail\xE2\x82", "\xC0\x80", "\xED\xA0\x80", "\xED\xB2\x80",
                                 "\xF4\x90\x80\x80", std::string("nul\0in", 6),
                                 // Would read as a pair of surrogates where wide characters have 16 bits.
                                 "\xED\xA0\x80\x80", "\xED\xA0\x80\xFF", "\xED\xA0\x80\xED\xB0\x80"};
    for (const std::string& bytes : cases) {
        EXPECT_EQ(ToUtf8(FromUtf8(bytes)), bytes);
    }
    const std::wstring loneSurrogate{L'a', static_cast<wchar_t>(0xD800), L'b'};
    EXPECT_EQ(FromUtf8(ToUtf8(loneSurrogate)), loneSurrogate);
    EXPECT_EQ(FromUtf8("\xF0\x9F\x98\x80"), L"\U0001F600");
}

TEST(Text, ValidUtf8ReplacesEachByteOutsideACharacter) {
    const struct {
        const char *bytes, *valid;
    } cases[] = {
        {"Gr\xC3\xB6\xC3\x9F \xF0\x9F\x97\xBA", "Gr\xC3\xB6\xC3\x9F \xF0\x9F\x97\xBA"},
        {"cut \xE2\x82", "cut \uFFFD\uFFFD"},
        {"\xFF\xFEx", "\uFFFD\uFFFDx"},
        {"overlong \xC0\xAF", "overlong \uFFFD\uFFFD"},
        {"surrogate \xED\xA0\x80", "surrogate \uFFFD\uFFFD\uFFFD"},
        {"beyond \xF4\x90\x80\x80", "beyond \uFFFD\uFFFD\uFFFD\uFFFD"},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(ValidUtf8(c.bytes), c.valid);
    }
}

TEST(Text, CutsAndCountsWholeCharacters) {
    const std::wstring text = L"a\U0001F600b";
    EXPECT_EQ(CountCharacters(text), 3U);
    for (std::size_t length = 0; length <= text.size(); ++length) {
        const std::wstring cut = text.substr(0, WholeLength(text, length));
        EXPECT_TRUE(cut.empty() || cut == L"a" || cut == L"a\U0001F600" || cut == text) << length;
        EXPECT_GE(cut.size() + 1, length);
    }
    const std::wstring formatted = FormatText(L"%s", {text}, text.size());
    EXPECT_EQ(formatted, L"a\U0001F600");
}

TEST(Text, LetterCaseDoesNotDependOnTheProcessLocale) {
    EXPECT_EQ(ToUpper(L"straße äöü éł.las"), L"STRAßE ÄÖÜ ÉŁ.LAS");
    EXPECT_TRUE(EqualNoCase(L"Ä.LAZ", L"ä.laz"));
}

TEST(Text, PathsComeApart) {
    struct Case {
        const wchar_t *path, *folder, *name, *extension, *withLas;
    };
    const Case cases[] = {
        {L"/data/a.b/tile.laz", L"/data/a.b", L"tile.laz", L".LAZ", L"/data/a.b/tile.las"},
        {L"/data/a.b/tile", L"/data/a.b", L"tile", L"", L"/data/a.b/tile.las"},
        {L"/tile.las", L"/", L"tile.las", L".LAS", L"/tile.las"},
        {L"/data/.las", L"/data", L".las", L"", L"/data/.las.las"},
        {L"tile.copc.laz", L"", L"tile.copc.laz", L".LAZ", L"tile.copc.las"},
    };
    for (const Case& c : cases) {
        EXPECT_EQ(FolderOf(c.path), c.folder);
        EXPECT_EQ(FileNameOf(c.path), c.name);
        EXPECT_EQ(UpperExtensionOf(c.path), c.extension);
        EXPECT_EQ(WithExtension(c.path, L".las"), c.withLas);
    }
}

}  // namespace
}  // namespace orvex
