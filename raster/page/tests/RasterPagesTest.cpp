// What the raster page and the DEM page have of their own; RasterPageContractTest.cpp has what they share
// with the other pages.
#include <gmock/gmock.h>

#include <QComboBox>
#include <QLineEdit>
#include <QTableView>
#include <QTextEdit>
#include <stdexcept>

#include "dialog/testing/PageFixture.h"
#include "raster/page/AddDEMFilesPP.h"
#include "raster/page/AddRasterFilesPP.h"
#include "raster/testing/GeoTiff.h"

namespace orvex {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::SizeIs;

/// The raster page or the DEM page in the dialog.
class RasterPageFixture : public testing::PageFixture {
  protected:
    using PageFixture::PageFixture;

    /// A georeferenced image of 20 x 10 pixels. EPSG code 0: without a CRS.
    std::wstring Tif(const std::wstring& name, int epsg = 25832) const {
        const testing::GeoTiff tif{.crs = epsg == 0 ? "" : "EPSG:" + std::to_string(epsg)};
        return tif.Write(folder, name);
    }
    std::wstring BadTif(const std::wstring& name) const { return folder.Write(name, "no raster"); }
    /// The WKT of a code as a project stores it.
    std::wstring Wkt(int epsg) const {
        return FromUtf8(*InspectRasterFile(Tif(L"wkt.tif", epsg), RasterUse::Image).Properties().wkt);
    }
};

class RasterPage : public RasterPageFixture {
  protected:
    RasterPage() : RasterPageFixture(testing::MakePage<AddRasterFilesPP>) {}

    std::string PaneText(const char* tab) const { return Find<QTextEdit>(tab)->toPlainText().toStdString(); }
};

TEST_F(RasterPage, FilesAreDescribedAndGetCompatibleLayersOfTheProject) {
    given.existingRasterLayers = {{L"Ortho 2020", Wkt(25832)}};
    Open();
    page->AddPaths({Tif(L"a.tif"), Tif(L"b.tif", 28992), BadTif(L"c.tif")});
    EXPECT_THAT(Names(), ElementsAre(L"a.tif", L"b.tif", L"c.tif"));
    EXPECT_THAT(Shown("layer"), ElementsAre(L"Ortho 2020", L"Raster Layer_1", L""));
    EXPECT_THAT(Shown("imageSize"), ElementsAre(L"20 x 10", L"20 x 10", L""));
    EXPECT_THAT(prompts.shown, IsEmpty()) << "one bad file is no reason for a message";
    EXPECT_THAT(PaneText("rasterOverview"), HasSubstr("20 x 10"));
    EXPECT_THAT(PaneText("rasterCrs"), HasSubstr("25832"));
    EXPECT_THAT(PaneText("rasterBands"), HasSubstr("Byte"));
    EXPECT_THAT(Found(L"crs = 25832"), ElementsAre(L"a.tif"));
    EXPECT_THAT(Found(L"size < 1 width >= 20"), ElementsAre(L"a.tif", L"b.tif"));
    const QTableView& table = *Grid().Table();
    for (const char* name : {"size", "layer", "summary"}) {
        const int column = ColumnNamed(name);
        EXPECT_LE(table.columnViewportPosition(column) + table.columnWidth(column), table.viewport()->width())
            << name;
    }
    Check(441);
    EXPECT_THAT(Shown("layer"), ElementsAre(L"Raster Layer_1", L"Raster Layer_2", L""));
}

/// A host's object that always throws.
class ThrowingInformation final : public OrvexRasterInformation {
  public:
    std::int32_t Describe(const std::wstring&, RasterProperties&, std::wstring&) override {
        throw std::runtime_error("the driver failed");
    }
};

TEST_F(RasterPage, AnExceptionWhileReadingIsReportedOncePerRunAndTheFilesAreListed) {
    hostObjects.rasterInformation = [](std::int32_t&) { return std::make_unique<ThrowingInformation>(); };
    Open();
    page->AddPaths({Tif(L"a.tif"), Tif(L"b.tif")});
    EXPECT_THAT(Names(), ElementsAre(L"a.tif", L"b.tif"));
    ASSERT_THAT(prompts.shown, SizeIs(1));
    EXPECT_EQ(prompts.shown[0].text, Text(text::kRasterPropertiesFailed));
    Click(437);
    EXPECT_THAT(prompts.shown, SizeIs(2));
}

TEST_F(RasterPage, TheHostGetsPropertiesAndLayers) {
    const std::wstring good = Tif(L"a.tif");
    page->AddPaths({good, BadTif(L"broken.tif")});
    ASSERT_TRUE(Press("ok"));
    EXPECT_THAT(params.rasterFileLayers, ElementsAre(std::pair(good, std::wstring(L"Raster Layer_1"))));
    ASSERT_THAT(params.rasterFileDetails, SizeIs(1));
    EXPECT_EQ(params.rasterFileDetails.at(good)->FileName(), good);
    EXPECT_EQ(params.rasterFileDetails.at(good)->Properties().width, 20);
}

TEST_F(RasterPage, WithoutRowsTheOptionsAreStoredAllTheSame) {
    Check(441);
    ASSERT_TRUE(Press("ok"));
    EXPECT_FALSE(params.rasterAppend);
    EXPECT_TRUE(params.rasterPyramid);
    EXPECT_THAT(params.rasterFiles, IsEmpty());
    Open();
    EXPECT_FALSE(Find<QAbstractButton>(441)->isChecked());
    EXPECT_TRUE(Find<QAbstractButton>(442)->isChecked());
}

class DemPage : public RasterPageFixture {
  protected:
    DemPage() : RasterPageFixture(testing::MakePage<AddDEMFilesPP>) {}

    static constexpr int kAppend = 464;
    static constexpr int kIgnoreCrs = 465;
    static constexpr int kVersion = 473;
    static constexpr int kFormat = 475;

    QLineEdit& Folder() const { return *Find<QLineEdit>(469); }
    QLineEdit& Thinning() const { return *Find<QLineEdit>(477); }
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
            Click(471);
            EXPECT_EQ(ToWide(Folder().text()), wanted);
        }
    }
}

TEST_F(DemPage, ABrowsedFolderEndsWithOneSeparator) {
    const std::wstring before = ToWide(Folder().text());
    const std::pair<std::optional<std::wstring>, std::wstring> cases[] = {
        {std::nullopt, before},
        {L"/data/out\\", L"/data/out\\"},
        {folder.Name(L"out"), NativePath(folder.Name(L"out") + L"/")}};
    for (const auto& [picked, wanted] : cases) {
        pickers.folders = {picked};
        Click(470);
        EXPECT_EQ(ToWide(Folder().text()), wanted);
    }
}

TEST_F(DemPage, ARefusedThinningIsNotSavedButTheOptionsBeforeItAre) {
    given.demExtraValues = {1, 2, 3, 4, 5};
    Open();
    const std::wstring path = Tif(L"a.tif");
    page->AddPaths({path, BadTif(L"broken.tif")});
    Check(kAppend);
    Thinning().setText(QStringLiteral("1"));
    EXPECT_FALSE(Press("ok"));
    EXPECT_THAT(params.demFiles, IsEmpty());
    EXPECT_THAT(params.demExtraValues, ElementsAre(1, 2, 3, 4, 5));
    EXPECT_EQ(Stored(L"DEMAppendToLayers"), SettingValue(std::int16_t{0}));
    EXPECT_EQ(Stored(L"DEMThinningFactor"), SettingValue());
    Thinning().setText(QStringLiteral("300"));
    EXPECT_TRUE(Press("ok"));
    EXPECT_EQ(Stored(L"DEMThinningFactor"), SettingValue(std::int16_t{256}));
    EXPECT_THAT(params.demFileLayers, ElementsAre(std::pair(path, std::wstring(L"DEM LAS Layer_1"))));
    EXPECT_THAT(params.demExtraValues, ElementsAre(0, 0, 0, 0, 0));
}

TEST_F(DemPage, ACoverageThatIsDroppedIsOneRowUnderItsFoldersName) {
    const std::wstring file = folder.Write(L"hill/hdr.adf", "damaged");
    for (const std::wstring& dropped : {FolderOf(file), file}) {
        testing::DropOn(*dialog, {dropped});
    }
    EXPECT_THAT(Names(), ElementsAre(L"hill"));
    EXPECT_THAT(prompts.shown, IsEmpty());
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
