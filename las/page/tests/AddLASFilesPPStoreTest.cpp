// What the page gives its host, and takes back.
#include <gmock/gmock.h>

#include <QLineEdit>
#include <QTableView>
#include <filesystem>

#include "las/LasColumns.h"
#include "las/page/tests/LasPageFixture.h"

namespace orvex {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using testing::LasPage;
using ::testing::SizeIs;

TEST_F(LasPage, AThinningThatIsTooSmallRefuses) {
    PickAndAdd({Las(L"a.las")});
    for (const char* text : {"1", "0", ""}) {
        Find<QLineEdit>("c267")->setText(text);
        EXPECT_FALSE(page->ValidateAndStore());
        EXPECT_EQ(prompts.shown.back().text, Text(text::kThinningRefused));
        EXPECT_EQ(prompts.shown.back().caption, Text(text::kThinningCaption));
    }
    EXPECT_THAT(prompts.shown, SizeIs(3));
    EXPECT_THAT(params.lasFiles, IsEmpty());
    Find<QLineEdit>("c267")->setText("300");
    EXPECT_TRUE(page->ValidateAndStore());
    EXPECT_EQ(params.lasThinning, 256);
    page->Release();
}

TEST_F(LasPage, OkCanComeTwiceAndCancelAfterItFreesEverything) {
    PickAndAdd({Las(L"a.las"), Laz(L"b.laz")});
    Check("c260");
    ASSERT_TRUE(page->ValidateAndStore());
    ASSERT_TRUE(page->ValidateAndStore());
    EXPECT_THAT(params.lasFileDetails, SizeIs(2));
    EXPECT_THAT(params.lasFiles.begin()->second, ElementsAre(L"a.las", L"b.laz"));
    EXPECT_TRUE(params.lasOpenSetting);

    Grid().SelectRows({0});
    Click("c254");
    EXPECT_THAT(params.lasFileDetails, IsEmpty()) << "the record names no file that is not listed";
    ASSERT_TRUE(page->ValidateAndStore());
    EXPECT_THAT(params.lasFileDetails, SizeIs(1));
    page->Release();
    page->Release();
    EXPECT_THAT(params.lasFiles, IsEmpty());
    EXPECT_THAT(params.lasFileDetails, IsEmpty());
    EXPECT_FALSE(params.lasOpenSetting);
}

TEST_F(LasPage, FilesAreHandedOverInTheOrderShown) {
    PickAndAdd({Las(L"b.las"), Las(L"c.las"), Las(L"a.las")});
    Grid().Table()->model()->sort(IndexOf(LasColumn::FileName), Qt::DescendingOrder);
    ASSERT_TRUE(page->ValidateAndStore());
    EXPECT_THAT(params.lasFiles.begin()->second, ElementsAre(L"c.las", L"b.las", L"a.las"));
    page->Release();
}

TEST_F(LasPage, AfterOkTheFilesBelongToTheHost) {
    const std::wstring path = Las(L"a.las");
    PickAndAdd({path});
    ASSERT_TRUE(page->ValidateAndStore());
    page.reset();
    const std::unique_ptr<LasFileInfo> file(params.lasFileDetails.at(path));
    EXPECT_EQ(file->GetPointCount(), 9U);
    EXPECT_EQ(params.lasFileLayers.at(path), L"LAS Layer_1");
}

TEST_F(LasPage, FilesThatCannotBeOpenedAreNamedInOneMessage) {
    const std::wstring a = Las(L"a.las");
    const std::wstring b = Las(L"b.las");
    PickAndAdd({a, b, Las(L"c.las")});
    std::filesystem::remove(ToPath(a));
    std::filesystem::remove(ToPath(b));
    Check("c260");
    EXPECT_FALSE(page->ValidateAndStore());
    ASSERT_THAT(prompts.shown, SizeIs(1));
    EXPECT_THAT(prompts.shown[0].text, HasSubstr(a));
    EXPECT_THAT(prompts.shown[0].text, HasSubstr(b));
    EXPECT_EQ(page->Model().rowCount(), 3);
    EXPECT_THAT(params.lasFiles, IsEmpty());
}

TEST_F(LasPage, CompanionFilesAreNeededWhileAFileHasNone) {
    EXPECT_FALSE(page->NeedsCompanionFiles());
    const std::wstring path = Las(L"a.las");
    folder.Write(L"a.qvr", "index");
    PickAndAdd({path});
    EXPECT_FALSE(page->NeedsCompanionFiles());
    PickAndAdd({Las(L"b.las")});
    EXPECT_TRUE(page->NeedsCompanionFiles());
}

}  // namespace
}  // namespace orvex
