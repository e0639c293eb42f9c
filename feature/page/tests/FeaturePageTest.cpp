// What the feature page has of its own; FeaturePageContractTest.cpp has what it shares with the other pages.
#include <gmock/gmock.h>

#include <QCheckBox>
#include <QLineEdit>
#include <QTextEdit>

#include "dialog/testing/PageFixture.h"
#include "feature/page/AddFeatureFilesPP.h"
#include "feature/page/tests/Drawing.h"
#include "feature/testing/TestShapefile.h"
#include "support/Files.h"
#include "support/Format.h"

namespace orvex {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::Pair;
using ::testing::SizeIs;

constexpr int kRequireCrs = 491;
constexpr int kFolder = 499;
constexpr std::int32_t kKmlOption = 1019;

class FeaturePage : public testing::PageFixture {
  protected:
    const std::wstring various = Text(text::kFeatureVarious);

    FeaturePage() : PageFixture(testing::MakePage<AddFeatureFilesPP>) {
        hostObjects.projectFolder = folder.Name(L"project");
    }

    std::wstring Shp(const std::wstring& name) const { return testing::TestShapefile().Write(folder, name); }
    std::wstring Dxf(const std::wstring& name) const { return testing::WriteDrawing(folder, name); }
    std::wstring Kml(const std::wstring& name) const {
        return folder.Write(name + L".kml",
                            "<?xml version=\"1.0\"?><kml xmlns=\"http://www.opengis.net/kml/2.2\"><Document>"
                            "<Placemark><Point><coordinates>8,47</coordinates></Point></Placemark>"
                            "</Document></kml>");
    }
    std::wstring PaneText(const char* tab) const { return ToWide(Find<QTextEdit>(tab)->toPlainText()); }
    std::vector<std::wstring> Told() {
        std::vector<std::wstring> texts;
        for (const Prompt& prompt : std::exchange(prompts.shown, {})) {
            texts.push_back(prompt.text);
        }
        return texts;
    }
    bool IsStored(const wchar_t* setting) const {
        return hostObjects.settings.contains({L"AddFilesDlg", setting});
    }
};

TEST_F(FeaturePage, FilesAreDescribedAndGetKeysOfTheirOwn) {
    page->AddPaths({Shp(L"towns"), Dxf(L"towns"), Dxf(L"sub/towns"), Kml(L"places")});
    EXPECT_THAT(Shown("layer"), ElementsAre(L"towns", various, various, various));
    EXPECT_THAT(Told(), IsEmpty());
    Grid().SelectRows({0});
    EXPECT_THAT(PaneText("featureOverview"), HasSubstr(L"Point"));
    EXPECT_THAT(PaneText("featureFields"), HasSubstr(L"HEIGHT"));
    EXPECT_THAT(PaneText("featureLayers"), HasSubstr(L"towns"));
    EXPECT_EQ(PaneText("featureCrs"), Text(text::kDetailsNoCrs));
    Grid().SelectRows({1});
    EXPECT_THAT(PaneText("featureLayers"), HasSubstr(L"roads"));
    EXPECT_EQ(PaneText("featureFields"), Text(text::kFeatureNoFields));
    Grid().SelectRows({3});
    EXPECT_THAT(PaneText("featureCrs"), HasSubstr(L"EGM96"));
    Grid().SelectAll();
    EXPECT_THAT(PaneText("featureOverview"), HasSubstr(Text(text::kTotalsSelection)));
    hostObjects.optionItems[kKmlOption] = std::int16_t{-1};
    ASSERT_TRUE(Press("ok"));
    EXPECT_THAT(params.featureFiles, ElementsAre(Pair(L"places", folder.Name(L"places.kml")),
                                                 Pair(L"towns", folder.Name(L"towns.shp")),
                                                 Pair(L"towns (2)", folder.Name(L"towns.dxf")),
                                                 Pair(L"towns (3)", folder.Name(L"sub/towns.dxf"))));
    EXPECT_EQ(params.featureOutputFolder, NativePath(folder.Name(L"project/DWG Import")));
    EXPECT_TRUE(FolderExists(params.featureOutputFolder));
}

TEST_F(FeaturePage, WithShapefilesOnlyTheImportIsNeitherCheckedNorSaved) {
    page->AddPaths({Shp(L"a")});
    Find<QLineEdit>(kFolder)->setText("");
    ASSERT_TRUE(Press("ok"));
    EXPECT_EQ(params.featureOutputFolder, L"");
    EXPECT_TRUE(IsStored(L"ShowAdvColsFeatures"));
    EXPECT_FALSE(IsStored(L"DWGImportPoints") || IsStored(L"DWGShpFolder"));
}

TEST_F(FeaturePage, AFolderThatCannotBeUsedKeepsTheDialogOpen) {
    const QString file = ToQString(folder.Write(L"file", "x"));
    for (const QString& typed : {QString(), QString("out"), file, file + "/below"}) {
        SCOPED_TRACE(typed.toStdString());
        Open();
        page->AddPaths({Dxf(L"a")});
        Find<QLineEdit>(kFolder)->setText(typed);
        EXPECT_FALSE(Press("ok"));
        ASSERT_THAT(prompts.shown, SizeIs(1));
        EXPECT_EQ(prompts.shown[0].caption, Text(text::kFeatureOutputFolderCaption));
        EXPECT_THAT(Told(),
                    ElementsAre(FormatText(Text(text::kFeatureOutputFolderRefused), {ToWide(typed)})));
        EXPECT_THAT(params.featureFiles, IsEmpty());
        EXPECT_TRUE(IsStored(L"DWGImportPoints"));
        EXPECT_FALSE(IsStored(L"DWGShpFolder"));
    }
    hostObjects.projectFolder.clear();
    Open();
    page->AddPaths({Dxf(L"a")});
    EXPECT_FALSE(Press("ok")) << "nobody knows the project's folder";
}

TEST_F(FeaturePage, KmlFilesNeedTheOptionOfTheHost) {
    const std::pair<SettingValue, bool> values[] = {{std::monostate(), false},
                                                    {std::int16_t{0}, false},
                                                    {std::int16_t{1}, false},
                                                    {std::int16_t{-1}, true},
                                                    {std::int32_t{-1}, true}};
    for (const auto& [value, isAllowed] : values) {
        hostObjects.optionItems[kKmlOption] = value;
        Open();
        page->AddPaths({Kml(L"a"), Shp(L"b")});
        EXPECT_EQ(Press("ok"), isAllowed);
        EXPECT_EQ(Told(), isAllowed ? std::vector<std::wstring>() : std::vector{Text(text::kKmlSwitchedOff)});
        EXPECT_EQ(params.featureFiles.size(), isAllowed ? 2U : 0U);
    }
    Open();
    page->AddPaths({Kml(L"a")});
    hostObjects.createApplicationResult = kHostFail;
    EXPECT_FALSE(Press("ok"));
}

TEST_F(FeaturePage, RequiringACrsReadsTheFilesAgainAndWarnsWhenMoreAreLeftOut) {
    given.existingFeatureLayers = {{L"taken", {}}};
    Open();
    testing::WritePrj(folder, L"with");
    page->AddPaths({Shp(L"with"), Shp(L"without"), Shp(L"taken"), Kml(L"c")});
    EXPECT_THAT(Shown("layer"), ElementsAre(L"with", L"without", L"", various));
    EXPECT_THAT(Shown("summary")[2], FormatText(Text(text::kFeatureLayerExists), {L"taken"}));
    Check(kRequireCrs);
    EXPECT_THAT(Shown("layer"), ElementsAre(L"with", L"", L"", various));
    EXPECT_EQ(Shown("summary")[1], Text(text::kFeatureWithoutCrs));
    EXPECT_THAT(Told(), ElementsAre(Text(text::kFeatureUnknownCrsWarning)));
    testing::WritePrj(folder, L"without");
    Check(kRequireCrs);
    EXPECT_THAT(Told(), IsEmpty()) << "fewer are left out";
    EXPECT_EQ(Shown("layer")[1], L"without");
    Check(kRequireCrs);
    EXPECT_EQ(Shown("layer")[1], L"without") << "it was read again";
    EXPECT_THAT(Told(), IsEmpty());
    page->AddPaths({Shp(L"later")});
    EXPECT_EQ(Shown("layer").back(), L"") << "files that come later too";
    hostObjects.optionItems[kKmlOption] = std::int16_t{-1};
    ASSERT_TRUE(Press("ok"));
    EXPECT_TRUE(params.featureRequireCrs);
    EXPECT_THAT(params.featureFiles,
                ElementsAre(Pair(L"c", folder.Name(L"c.kml")), Pair(L"with", folder.Name(L"with.shp")),
                            Pair(L"without", folder.Name(L"without.shp"))));
    Open();
    EXPECT_FALSE(Find<QCheckBox>(kRequireCrs)->isChecked()) << "unticked each time";
}

TEST_F(FeaturePage, FilesOfAnEarlierCallKeepTheirKeys) {
    given.featureFiles = {{L"Roads", L"/host/Roads.shp"}, {L"towns", folder.Name(L"towns.shp")}};
    Open();
    page->AddPaths({Shp(L"roads"), Shp(L"towns")});
    ASSERT_TRUE(Press("ok"));
    EXPECT_THAT(params.featureFiles,
                ElementsAre(Pair(L"Roads", L"/host/Roads.shp"), Pair(L"roads (2)", folder.Name(L"roads.shp")),
                            Pair(L"towns", folder.Name(L"towns.shp"))));
}

TEST_F(FeaturePage, TheFolderIsBrowsedAndMadeOneOfTheProject) {
    auto* field = Find<QLineEdit>(kFolder);
    pickers.folders = {folder.Name(L"picked")};
    Click(500);
    EXPECT_EQ(ToWide(field->text()), folder.Name(L"picked") + std::wstring(1, ToWide(field->text()).back()));
    EXPECT_EQ(pickers.folderTitles.back(), Text(text::kFeatureOutputFolderTitle));
    field->setText("C:\\Data\\Shapes");
    Click(501);
    EXPECT_EQ(field->text(), "<ORVEX_PROJECT_PATH>\\Data\\Shapes");
}

}  // namespace
}  // namespace orvex
