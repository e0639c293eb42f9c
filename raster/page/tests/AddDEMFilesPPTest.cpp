#include "raster/page/AddDEMFilesPP.h"

#include <gmock/gmock.h>

#include <QComboBox>
#include <QLineEdit>

#include "raster/page/RasterPageControls.h"
#include "raster/page/tests/RasterPageFixture.h"
#include "support/QtText.h"

namespace orvex {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::SizeIs;
using namespace dem_control;

class DemPage : public testing::RasterPageFixture<AddDEMFilesPP, RasterUse::Dem> {
  protected:
    DemPage() : RasterPageFixture(DemListControls()) {}

    QLineEdit& Folder() const { return *Find<QLineEdit>(kFolder); }
    QLineEdit& Thinning() const { return *Find<QLineEdit>(kThinning); }
    /// Types into the thinning edit as a user does.
    void TypeThinning(const char* keys) const {
        Thinning().setFocus();
        Thinning().selectAll();
        QTest::keyClick(&Thinning(), Qt::Key_Delete);
        QTest::keyClicks(&Thinning(), QString::fromLatin1(keys));
    }
    std::vector<int> Items(int id) const {
        std::vector<int> values;
        const auto* list = Find<QComboBox>(id);
        for (int i = 0; i < list->count(); ++i) {
            EXPECT_EQ(id == kFormat ? list->itemText(i) : QString(),
                      id == kFormat ? QString::number(list->itemData(i).toInt()) : QString());
            values.push_back(list->itemData(i).toInt());
        }
        return values;
    }
    void Choose(int id, const char* text) const {
        auto* list = Find<QComboBox>(id);
        list->setCurrentIndex(list->findText(QString::fromLatin1(text)));
    }
    SettingValue Stored(const wchar_t* key) { return hostObjects.settings[{L"AddFilesDlg", key}]; }
};

TEST_F(DemPage, AFreshMachineStartsWithEverythingSet) {
    for (const int id : {kAppend, kIgnoreCrs, kPyramid, kReadWrite, kDetailColumns}) {
        EXPECT_TRUE(Checked(id)) << id;
    }
    EXPECT_FALSE(Checked(kReadOnly));
    EXPECT_EQ(Find<QAbstractButton>(kDetailColumns)->text(), "<<");
    EXPECT_EQ(ToWide(Folder().text()), L"<ORVEX_PROJECT_PATH>\\DEM Import");
    EXPECT_EQ(Thinning().text(), "16");
    EXPECT_EQ(Find<QComboBox>(kVersion)->currentText(), "1.4");
    EXPECT_EQ(Find<QComboBox>(kFormat)->currentText(), "0");
    EXPECT_THAT(prompts.shown, IsEmpty());
}

TEST_F(DemPage, TheFormatsFollowTheVersion) {
    EXPECT_THAT(Items(kVersion), ElementsAre(0, 1, 3, 4, 5));
    const std::pair<const char*, std::size_t> counts[] = {
        {"1.0", 2}, {"1.1", 2}, {"1.2", 4}, {"1.3", 6}, {"1.4", 9}};
    for (const auto& [version, count] : counts) {
        Choose(kVersion, version);
        EXPECT_THAT(Items(kFormat), SizeIs(count)) << version;
        EXPECT_EQ(Find<QComboBox>(kFormat)->currentIndex(), 0) << version;
        Find<QComboBox>(kFormat)->setCurrentIndex(1);
    }
}

TEST_F(DemPage, TheTokenIsInsertedOnce) {
    Folder().setText(QStringLiteral("C:\\Data\\DEM"));
    Click(kInsertToken);
    EXPECT_EQ(ToWide(Folder().text()), L"<ORVEX_PROJECT_PATH>\\Data\\DEM");
    Click(kInsertToken);
    EXPECT_EQ(ToWide(Folder().text()), L"<ORVEX_PROJECT_PATH>\\Data\\DEM");
    Folder().setText(QStringLiteral("Exports"));
    Click(kInsertToken);
    EXPECT_EQ(ToWide(Folder().text()), L"<ORVEX_PROJECT_PATH>Exports");
}

TEST_F(DemPage, ABrowsedFolderEndsWithOneSeparator) {
    pickers.folders = {std::nullopt, L"/data/out/", L"/data/out\\", folder.Name(L"out")};
    Click(kBrowse);
    EXPECT_THAT(pickers.folderTitles, ElementsAre(Text(text::kDemOutputFolderTitle)));
    EXPECT_EQ(ToWide(Folder().text()), L"<ORVEX_PROJECT_PATH>\\DEM Import") << "cancelled";
    for (const wchar_t* ended : {L"/data/out/", L"/data/out\\"}) {
        Click(kBrowse);
        EXPECT_EQ(ToWide(Folder().text()), ended);
    }
    Click(kBrowse);
    EXPECT_EQ(ToWide(Folder().text()), NativePath(folder.Name(L"out") + L"/"));
}

TEST_F(DemPage, ThePromptsAndThePickerAreItsOwn) {
    params.initialFolder = L"/data/dem";
    pickers.files.push_back({PickOutcome::BufferTooSmall, {}});
    Click(kAddFiles);
    EXPECT_EQ(pickers.asked.at(0).title, Text(text::kDemPickerTitle));
    EXPECT_EQ(pickers.asked[0].initialFolder, L"/data/dem");
    EXPECT_THAT(pickers.asked[0].filters, SizeIs(11));
    AddFolder(folder.Name({}), PromptAnswer::Cancel);
    ASSERT_THAT(prompts.shown, SizeIs(2));
    EXPECT_EQ(prompts.shown[0].text, Text(text::kDemTooManySelected));
    EXPECT_EQ(prompts.shown[0].caption, Text(text::kPickerCaption));
    EXPECT_EQ(prompts.shown[0].icon, PromptIcon::Error);
    EXPECT_EQ(prompts.shown[1].text, Text(text::kDemSubfoldersQuestion));
    EXPECT_EQ(prompts.shown[1].caption, Text(text::kAddFolderCaption));
    EXPECT_EQ(prompts.shown[1].buttons, PromptButtons::YesNoCancel);
    EXPECT_THAT(pickers.folderTitles, ElementsAre(Text(text::kFolderTitle)));
    EXPECT_EQ(prompts.shown[1].icon, PromptIcon::Question);
}

TEST_F(DemPage, OnlyDigitsCanBeTypedAsThinningFactor) {
    TypeThinning("a1b2c34567890");
    EXPECT_EQ(Thinning().text(), "123456789");
    const std::pair<const char*, int> factors[] = {{"2", 2}, {"256", 256}, {"257", 256}, {"1000", 256}};
    PickAndAdd({Tif(L"a.tif")});
    for (const auto& [keys, stored] : factors) {
        TypeThinning(keys);
        ASSERT_TRUE(page->ValidateAndStore()) << keys;
        EXPECT_EQ(params.demThinning, stored);
        EXPECT_EQ(Stored(L"DEMThinningFactor"), SettingValue(static_cast<std::int16_t>(stored)));
    }
}

TEST_F(DemPage, AThinningFactorBelow2IsRefused) {
    TypeThinning("1");
    EXPECT_TRUE(page->ValidateAndStore()) << "nothing to convert";
    PickAndAdd({Tif(L"a.tif")});
    for (const char* keys : {"1", "0", ""}) {
        TypeThinning(keys);
        EXPECT_FALSE(page->ValidateAndStore()) << keys;
        EXPECT_EQ(prompts.shown.back().text, Text(text::kThinningRefused));
        EXPECT_EQ(prompts.shown.back().caption, Text(text::kThinningCaption));
        EXPECT_THAT(params.demFiles, IsEmpty());
    }
    EXPECT_THAT(Names(), SizeIs(1));
}

TEST_F(DemPage, OkWritesFilesOptionsAndSettings) {
    const std::wstring path = Tif(L"a.tif");
    PickAndAdd({path, folder.Write(L"broken.tif", "x")});
    Check(kReadOnly);
    Check(kPyramid);
    Choose(kVersion, "1.2");
    Choose(kFormat, "3");
    Folder().setText(QStringLiteral("<ORVEX_PROJECT_PATH>\\Out"));
    Click(kDetailColumns);
    ASSERT_TRUE(page->ValidateAndStore());
    EXPECT_THAT(params.demFiles, ElementsAre(std::pair(FolderOf(path), std::vector<std::wstring>{L"a.tif"})));
    EXPECT_FALSE(params.demOpenReadWrite || params.demPyramid);
    EXPECT_TRUE(params.demAppend && params.demIgnoreCrs);
    EXPECT_EQ(params.demLasVersion, 3);
    EXPECT_EQ(params.demPointFormat, 3);
    EXPECT_EQ(params.demThinning, 16);
    EXPECT_EQ(params.demLasFolder, L"<ORVEX_PROJECT_PATH>\\Out");
    EXPECT_EQ(params.demFileLayers[path], L"DEM LAS Layer_1");
    EXPECT_EQ(Stored(L"DEMShowAdvCols"), SettingValue(std::int16_t{0}));
    EXPECT_EQ(Stored(L"DEMOpenReadWriteSetting"), SettingValue(std::int16_t{0}));
    MakePage();
    EXPECT_TRUE(Checked(kReadOnly));
    EXPECT_FALSE(Checked(kPyramid));
    EXPECT_EQ(ToWide(Folder().text()), L"<ORVEX_PROJECT_PATH>\\Out");
    EXPECT_EQ(Find<QComboBox>(kVersion)->currentText(), "1.4") << "chosen anew each time";
}

TEST_F(DemPage, WithoutASettingsObjectTheUserIsToldWhy) {
    PickAndAdd({Tif(L"a.tif")});
    hostObjects.createSettingsResult = kHostFail;
    EXPECT_FALSE(page->ValidateAndStore());
    ASSERT_THAT(prompts.shown, SizeIs(1));
    EXPECT_THAT(ToUtf8(prompts.shown[0].text), HasSubstr("Failed to create OrvexSystemSettings object"));
    EXPECT_THAT(params.demFiles, IsEmpty());
    MakePage();
    EXPECT_THAT(prompts.shown, SizeIs(2)) << "the page opens all the same";
    EXPECT_EQ(Thinning().text(), "16");
}

TEST_F(DemPage, LayersAreThoseOfLasFilesWithOrWithoutACrs) {
    params.existingLasLayers = {{L"Terrain", Wkt(25832)}, {L"Local", L""}};
    params.existingRasterLayers = {{L"Ortho", Wkt(25832)}};
    PickAndAdd({Tif(L"a.tif"), Tif(L"b.tif", 28992)});
    EXPECT_THAT(Layers(), ElementsAre(L"Local", L"Local")) << "their CRS is ignored";
    Check(kIgnoreCrs);
    EXPECT_THAT(Layers(), ElementsAre(L"Terrain", L"DEM LAS Layer_1"));
    Check(kAppend);
    EXPECT_THAT(Layers(), ElementsAre(L"DEM LAS Layer_1", L"DEM LAS Layer_2"));
    EXPECT_EQ(Shown(RasterColumn::GpsTime)[0], L"Standard GPS Time");
}

TEST_F(DemPage, ElevationFilesAreTakenWhenTheyAreNamed) {
    const std::wstring grid =
        folder.Write(L"grid.asc", "ncols 2\nnrows 2\nxllcorner 0\nyllcorner 0\ncellsize 10\n1 2\n3 4\n");
    EXPECT_TRUE(page->Accepts(grid));
    page->AddPaths({grid});
    EXPECT_THAT(Shown(RasterColumn::PixelSizes), ElementsAre(L"10.00000000 x 10.00000000"));
    EXPECT_FALSE(page->Accepts(L"/x/a.las"));
}

TEST_F(DemPage, TheTabKeyGoesFromTopToBottom) {
    std::vector<int> order;
    QWidget* widget = page.get();
    do {
        widget = widget->nextInFocusChain();
        const int id =
            widget->objectName().startsWith(QLatin1Char('c')) ? widget->objectName().mid(1).toInt() : 0;
        if (id != 0 && (widget->focusPolicy() & Qt::TabFocus) != 0) {
            order.push_back(id);
        }
    } while (widget != page.get());
    EXPECT_THAT(order, ElementsAre(kAddFiles, kAddFolder, kRemove, kClear, kDetailColumns, kSelectAll,
                                   kRefresh, kHelp, kReadOnly, kReadWrite, kAppend, kIgnoreCrs, kPyramid,
                                   kFolder, kBrowse, kInsertToken, kVersion, kFormat, kThinning));
}

TEST_F(DemPage, ControlsRestDuringARun) {
    const DialogProgress::Run run(progress);
    for (const int id :
         {kAddFiles, kReadOnly, kAppend, kFolder, kBrowse, kInsertToken, kVersion, kFormat, kThinning}) {
        EXPECT_FALSE(Enabled(id)) << id;
    }
}

}  // namespace
}  // namespace orvex
