#include <gmock/gmock.h>

#include "dialog/page/tests/ScanFixture.h"
#include "support/Format.h"
#include "support/NaturalOrder.h"
#include "support/Text.h"
#include "support/testing/Scripted.h"

namespace orvex {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

TEST(NaturalOrder, IsHowAPersonLists) {
    const std::wstring ordered[] = {L"",
                                    L"/a/Z.las",
                                    L"/a b/a.las",
                                    L"tile",
                                    L"tile1",
                                    L"tile002",
                                    L"tile2b",
                                    L"tile10",
                                    L"tile99999999999999999999",
                                    L"tile100000000000000000000"};
    for (std::size_t i = 0; i + 1 < std::size(ordered); ++i) {
        EXPECT_TRUE(NaturalLess(ordered[i], ordered[i + 1])) << ToUtf8(ordered[i + 1]);
        EXPECT_FALSE(NaturalLess(ordered[i + 1], ordered[i])) << ToUtf8(ordered[i + 1]);
    }
    EXPECT_NE(NaturalLess(L"tile2", L"tile002"), NaturalLess(L"tile002", L"tile2"));
    EXPECT_FALSE(NaturalLess(L"same", L"same"));
}

TEST_F(Scanning, FindsByExtensionInNaturalOrder) {
    EXPECT_THAT(Names(Scan(false)), ElementsAre(L"b2.LAS", L"b10.las"));
    EXPECT_THAT(Names(Scan(true)), ElementsAre(L"b2.LAS", L"b10.las", Sub(L"c.las"), Sub(L"deep/d.las")));
    EXPECT_THAT(Names(Scan(false, {L".LAS", L".LAZ"})), ElementsAre(L"a.laz", L"b2.LAS", L"b10.las"));
    EXPECT_THAT(Scan(true, {}).files, IsEmpty());
}

TEST_F(Scanning, TakesNamedFilesInTheOrderGivenAndCountsOthers) {
    const ScanResult result = ScanPaths(
        {{folder.Name(L"b10.las"), folder.Name(L"notes.txt"), folder.Name(L"sub"), folder.Name(L"b2.LAS")},
         {L".LAS"},
         true},
        {});
    EXPECT_THAT(Names(result), ElementsAre(L"b10.las", Sub(L"c.las"), Sub(L"deep/d.las"), L"b2.LAS"));
    EXPECT_EQ(result.ignored, 1U);
}

TEST_F(Scanning, StopsWhenAsked) {
    std::stop_source stop;
    stop.request_stop();
    EXPECT_TRUE(ScanPaths({{FromPath(folder.Path())}, {L".LAS"}, true}, stop.get_token()).stopped);

    testing::RecordingProgress progress;
    const ScanResult whole =
        ScanPathsWithProgress({{FromPath(folder.Path())}, {L".LAS"}, true}, L"Searching", progress);
    EXPECT_EQ(whole.files.size(), 4U);
    EXPECT_FALSE(whole.stopped);
    EXPECT_THAT(progress.texts, ElementsAre(L"Searching"));
}

TEST(ScanMessages, TellTheWorstOfWhatWasFound) {
    const ScanTexts texts{.nothingFoundIcon = PromptIcon::Error};
    const std::vector<std::wstring> files{L"a.las"};
    const struct {
        ScanResult found;
        std::wstring text;  // empty: nothing is said
        PromptIcon icon;
    } cases[] = {
        {{files, {}, 0, false}, {}, {}},
        {{{}, {}, 2, true}, {}, {}},
        {{files, {}, 2, false}, FormatText(Text(text::kOthersLeftOut), {2}), PromptIcon::Information},
        {{{}, {}, 0, false}, Text(text::kFolderEmpty), PromptIcon::Error},
        {{files, {L"/secret"}, 2, true}, Text(text::kFoldersNotSearched) + L"\n\n/secret", PromptIcon::Error},
    };
    for (const auto& c : cases) {
        const std::optional<Prompt> prompt = ScanPrompt(c.found, texts);
        ASSERT_EQ(prompt.has_value(), !c.text.empty());
        if (prompt.has_value()) {
            EXPECT_EQ(prompt->text, c.text);
            EXPECT_EQ(prompt->caption, Text(text::kAddFolderCaption));
            EXPECT_EQ(prompt->icon, c.icon);
        }
    }
}

}  // namespace
}  // namespace orvex
