#include "raster/page/AddDEMFilesPP.h"

#include <gmock/gmock.h>

#include <QComboBox>
#include <QLineEdit>

#include "raster/page/tests/RasterPageFixture.h"

namespace orvex {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::SizeIs;

constexpr int kAppend = 464;
constexpr int kIgnoreCrs = 465;
constexpr int kFolder = 469;
constexpr int kBrowse = 470;
constexpr int kInsertToken = 471;
constexpr int kVersion = 473;
constexpr int kFormat = 475;
constexpr int kThinning = 477;

class DemPage : public testing::RasterPageFixture {
  protected:
    DemPage() : RasterPageFixture(testing::MakePage<AddDEMFilesPP>) {}

    QLineEdit& Folder() const { return *Find<QLineEdit>(kFolder); }
    QLineEdit& Thinning() const { return *Find<QLineEdit>(kThinning); }
    QStringList Items(int id) const {
        QStringList items;
        const auto* list = Find<QComboBox>(id);
        for (int i = 0; i < list->count(); ++i) {
            items.append(list->itemText(i));
        }
        return items;
    }
    SettingValue Stored(const wchar_t* key) { return hostObjects.settings[{L"AddFilesDlg", key}]; }
};

TEST_F(DemPage, TheFormatsFollowTheVersion) {
    auto* version = Find<QComboBox>(kVersion);
    auto* format = Find<QComboBox>(kFormat);
    EXPECT_EQ(Items(kVersion).join(' '), "1.0 1.1 1.2 1.3 1.4");
    EXPECT_EQ(version->currentText(), "1.4");
    const std::pair<const char*, const char*> cases[] = {{"1.0", "0 1"},
                                                         {"1.1", "0 1"},
                                                         {"1.2", "0 1 2 3"},
                                                         {"1.3", "0 1 2 3 4 5"},
                                                         {"1.4", "0 1 2 3 4 5 6 7 8"}};
    for (const auto& [name, formats] : cases) {
        format->setCurrentIndex(1);
        version->setCurrentText(QString::fromLatin1(name));
        EXPECT_EQ(Items(kFormat).join(' '), formats) << name;
        EXPECT_EQ(format->currentText(), "0") << name;
    }
}

TEST_F(DemPage, TheTokenIsInsertedOnce) {
    const std::pair<const char*, const wchar_t*> cases[] = {
        {"C:\\Data\\DEM", L"<ORVEX_PROJECT_PATH>\\Data\\DEM"}, {"Exports", L"<ORVEX_PROJECT_PATH>Exports"}};
    for (const auto& [typed, wanted] : cases) {
        Folder().setText(QString::fromLatin1(typed));
        for (int press = 0; press < 2; ++press) {
            Click(kInsertToken);
            EXPECT_EQ(ToWide(Folder().text()), wanted);
        }
    }
}

TEST_F(DemPage, ABrowsedFolderEndsWithOneSeparator) {
    const std::wstring before = ToWide(Folder().text());
    const std::pair<std::optional<std::wstring>, std::wstring> cases[] = {
        {std::nullopt, before},
        {L"/data/out/", L"/data/out/"},
        {L"/data/out\\", L"/data/out\\"},
        {folder.Name(L"out"), NativePath(folder.Name(L"out") + L"/")}};
    for (const auto& [picked, wanted] : cases) {
        pickers.folders = {picked};
        Click(kBrowse);
        EXPECT_EQ(ToWide(Folder().text()), wanted);
        EXPECT_EQ(pickers.folderTitles.back(), Text(text::kDemOutputFolderTitle));
    }
}

TEST_F(DemPage, OnlyDigitsCanBeTypedAsThinningFactor) {
    Thinning().setFocus();
    Thinning().selectAll();
    QTest::keyClick(&Thinning(), Qt::Key_Delete);
    QTest::keyClicks(&Thinning(), QStringLiteral("a1b2c34567890"));
    EXPECT_EQ(Thinning().text(), "123456789");
}

TEST_F(DemPage, ARefusedThinningIsNotSavedButTheOptionsBeforeItAre) {
    given.demLasFolder = L"host's";
    given.demExtraValues = {1, 2, 3, 4, 5};
    Open();
    const std::wstring path = Tif(L"a.tif");
    page->AddPaths({path, BadTif(L"broken.tif")});
    Check(kAppend);
    Thinning().setText(QStringLiteral("1"));
    EXPECT_FALSE(Press("ok"));
    EXPECT_THAT(params.demFiles, IsEmpty());
    EXPECT_EQ(params.demLasFolder, L"host's");
    EXPECT_THAT(params.demExtraValues, ElementsAre(1, 2, 3, 4, 5));
    EXPECT_EQ(Stored(L"DEMAppendToLayers"), SettingValue(std::int16_t{0}));
    EXPECT_EQ(Stored(L"DEMThinningFactor"), SettingValue());
    Thinning().setText(QStringLiteral("300"));
    EXPECT_TRUE(Press("ok"));
    EXPECT_EQ(Stored(L"DEMThinningFactor"), SettingValue(std::int16_t{256}));
    EXPECT_THAT(params.demFileLayers, ElementsAre(std::pair(path, std::wstring(L"DEM LAS Layer_1"))));
    EXPECT_THAT(params.demExtraValues, ElementsAre(0, 0, 0, 0, 0));
}

TEST_F(DemPage, WithoutRowsNothingIsSaved) {
    given.demThinning = 7;
    Open();
    Check(kAppend);
    Thinning().setText(QStringLiteral("1"));
    EXPECT_TRUE(Press("ok")) << "nothing to convert";
    EXPECT_FALSE(params.demAppend);
    EXPECT_EQ(params.demThinning, 7);
    EXPECT_THAT(hostObjects.settings, IsEmpty());
}

TEST_F(DemPage, WithoutASettingsObjectTheUserIsToldWhy) {
    page->AddPaths({Tif(L"a.tif")});
    hostObjects.createSettingsResult = kHostFail;
    EXPECT_FALSE(Press("ok"));
    ASSERT_THAT(prompts.shown, SizeIs(1));
    EXPECT_THAT(ToUtf8(prompts.shown[0].text), HasSubstr("Failed to create OrvexSystemSettings object"));
    EXPECT_THAT(params.demFiles, IsEmpty());
    Open();
    EXPECT_THAT(prompts.shown, SizeIs(2)) << "the page opens all the same";
    EXPECT_EQ(Thinning().text(), "16");
}

TEST_F(DemPage, LayersAreThoseOfLasFilesWithOrWithoutACrs) {
    given.existingLasLayers = {{L"dem las layer_1", Wkt(25832)}, {L"Local", L""}};
    given.existingRasterLayers = {{L"Ortho", Wkt(28992)}};
    Open();
    page->AddPaths({Tif(L"a.tif"), Tif(L"b.tif", 28992), Tif(L"c.tif", 0), BadTif(L"d.tif")});
    EXPECT_THAT(Shown("layer"), ElementsAre(L"Local", L"Local", L"Local", L"")) << "their CRS is ignored";
    Check(kIgnoreCrs);
    EXPECT_THAT(Shown("layer"), ElementsAre(L"dem las layer_1", L"DEM LAS Layer_2", L"Local", L""));
    Check(kAppend);
    EXPECT_THAT(Shown("layer"), ElementsAre(L"DEM LAS Layer_2", L"DEM LAS Layer_3", L"DEM LAS Layer_4", L""));
    Check(kIgnoreCrs);
    EXPECT_THAT(Shown("layer"), ElementsAre(L"DEM LAS Layer_2", L"DEM LAS Layer_2", L"DEM LAS Layer_2", L""));
    EXPECT_EQ(Shown("gpsTime")[0], L"Standard GPS Time");
}

}  // namespace
}  // namespace orvex
