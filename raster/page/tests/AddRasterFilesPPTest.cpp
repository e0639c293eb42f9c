#include "raster/page/AddRasterFilesPP.h"

#include <gmock/gmock.h>

#include <QAbstractItemModelTester>
#include <QTextEdit>
#include <filesystem>
#include <stdexcept>

#include "raster/page/RasterPageControls.h"
#include "raster/page/tests/RasterPageFixture.h"
#include "support/QtText.h"

namespace orvex {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::SizeIs;
using ::testing::UnorderedElementsAre;
using namespace raster_control;

class RasterPage : public testing::RasterPageFixture<AddRasterFilesPP, RasterUse::Image> {
  protected:
    RasterPage() : RasterPageFixture(RasterListControls()) {}

    std::string PaneText(const char* tab) const {
        auto* view = page->findChild<QTextEdit*>(QString::fromLatin1(tab));
        return view == nullptr ? std::string() : view->toPlainText().toStdString();
    }
};

TEST_F(RasterPage, APickedFileIsDescribedAndGetsALayer) {
    PickAndAdd({Tif(L"a.tif"), Tif(L"b.tif", 4326), folder.Write(L"c.tif", "no raster")});
    EXPECT_THAT(Names(), ElementsAre(L"a.tif", L"b.tif", L"c.tif"));
    EXPECT_THAT(Layers(), ElementsAre(L"Raster Layer_1", L"Raster Layer_2", L""));
    EXPECT_EQ(Shown(RasterColumn::ImageSize)[0], L"20 x 10");
    EXPECT_EQ(Shown(RasterColumn::PixelSizes)[0], L"0.50000000 x 0.50000000");
    EXPECT_EQ(Shown(RasterColumn::LinearUnit)[0], L"Meters");
    EXPECT_EQ(Shown(RasterColumn::ProjectionCode)[0], L"EPSG:25832");
    EXPECT_THAT(ToUtf8(Shown(RasterColumn::Summary)[2]), HasSubstr(ToUtf8(Text(text::kRasterCannotBeRead))));
    EXPECT_THAT(prompts.shown, IsEmpty()) << "one bad file is no reason for a message";
    EXPECT_THAT(PaneText("rasterOverview"), HasSubstr("20 x 10"));
    EXPECT_THAT(PaneText("rasterCrs"), HasSubstr("25832"));
    EXPECT_THAT(PaneText("rasterBands"), HasSubstr("Byte"));
}

TEST_F(RasterPage, AListedFileIsNotListedAgainInAnyLetterCase) {
    const std::wstring path = Tif(L"a.tif");
    PickAndAdd({path, FolderOf(path) + L"/A.TIF"});
    PickAndAdd({FolderOf(path) + L"/a.Tif", Tif(L"b.tif")});
    EXPECT_THAT(Names(), ElementsAre(L"a.tif", L"b.tif"));
}

TEST_F(RasterPage, ThePickerIsAskedForTheFilesThatThePageTakes) {
    params.initialFolder = L"/data/rasters";
    pickers.files.push_back({});
    Click(kAddFiles);
    ASSERT_THAT(pickers.asked, SizeIs(1));
    const OpenFilesRequest& asked = pickers.asked[0];
    EXPECT_EQ(asked.title, Text(text::kRasterPickerTitle));
    EXPECT_EQ(asked.initialFolder, L"/data/rasters");
    EXPECT_EQ(asked.bufferCharacters, 130261U);
    std::vector<std::wstring> filters;
    for (const FileFilter& filter : asked.filters) {
        filters.push_back(filter.caption + L"|" + filter.patterns);
    }
    EXPECT_THAT(
        filters,
        ElementsAre(L"All Image Files|*.tif;*.tiff;*.jpg;*.jpeg;*.rgb;*.png;*.sid;*.gif;*.bmp;*.jp2;*.jp2k;"
                    L"*.flt;*.ecw;*.img",
                    L"TIF Files (*.tif)|*.tif", L"JPEG Files (*.jpg)|*.jpg", L"PNG Files (*.png)|*.png",
                    L"GIF Files (*.gif)|*.gif", L"BMP Files (*.bmp)|*.bmp", L"MrSID Files (*.sid)|*.sid",
                    L"JP2000 Files (*.jp2)|*.jp2", L"ECW Files (*.ecw)|*.ecw", L"IMG Files (*.img)|*.img",
                    L"All Files (*.*)|*.*"));
}

TEST_F(RasterPage, APickerThatFailsAddsNothing) {
    const std::pair<PickOutcome, std::wstring> told[] = {
        {PickOutcome::BufferTooSmall,
         L"There are too many selected files for the allocated buffer. Select fewer files, then add more "
         L"files to "
         L"the layer using the Raster Files tab."},
        {PickOutcome::OutOfMemory, Text(text::kPickerOutOfMemory)}};
    for (const auto& [outcome, text] : told) {
        pickers.files.push_back({outcome, {Tif(L"a.tif")}});
        Click(kAddFiles);
        ASSERT_FALSE(prompts.shown.empty());
        EXPECT_EQ(prompts.shown.back().text, text);
        EXPECT_EQ(prompts.shown.back().caption, Text(text::kPickerCaption));
    }
    for (const PickOutcome outcome : {PickOutcome::Failed, PickOutcome::Cancelled}) {
        pickers.files.push_back({outcome, {}});
        Click(kAddFiles);
    }
    EXPECT_THAT(prompts.shown, SizeIs(2)) << "any other failure is silent";
    EXPECT_THAT(Names(), IsEmpty());
}

TEST_F(RasterPage, AFolderIsSearchedForItsOwnListOfExtensions) {
    for (const wchar_t* name :
         {L"in/a.tif", L"in/b.TIFF", L"in/sub/c.tif", L"in/d.sid", L"in/e.SID", L"in/f.txt", L"in/g.asc",
          L"in/h.jpg", L"in/i.jpeg", L"in/j.rgb", L"in/k.png", L"in/l.gif", L"in/m.bmp", L"in/n.jp2",
          L"in/o.jp2k", L"in/p.ecw", L"in/q.img", L"in/r.flt"}) {
        folder.Write(name, "x");
    }
    AddFolder(folder.Name(L"in") + L"/", PromptAnswer::No);
    EXPECT_EQ(Shown(RasterColumn::Path)[0], folder.Name(L"in/a.tif")) << "one separator";
    EXPECT_THAT(Names(),
                UnorderedElementsAre(L"a.tif", L"b.TIFF", L"h.jpg", L"i.jpeg", L"j.rgb", L"k.png", L"l.gif",
                                     L"m.bmp", L"n.jp2", L"o.jp2k", L"p.ecw", L"q.img", L"r.flt"));
    ASSERT_THAT(prompts.shown, SizeIs(1));
    EXPECT_EQ(prompts.shown[0].text, L"Would you like to add raster files from all subfolders as well?");
    EXPECT_EQ(prompts.shown[0].caption, Text(text::kAddFolderCaption));
    EXPECT_EQ(prompts.shown[0].buttons, PromptButtons::YesNoCancel);
    AddFolder(folder.Name(L"in"), PromptAnswer::Cancel);
    EXPECT_THAT(Names(), SizeIs(13));
    AddFolder(folder.Name(L"in"), PromptAnswer::Yes);
    EXPECT_THAT(Names(), SizeIs(14)) << "the one in the subfolder";
    page->AddPaths({folder.Name(L"in/d.sid"), folder.Name(L"in/f.txt")});
    EXPECT_EQ(Names().back(), L"d.sid") << "a file that is named is taken";
    EXPECT_TRUE(page->Accepts(L"/x/y.SID"));
    EXPECT_FALSE(page->Accepts(L"/x/y.las"));
}

TEST_F(RasterPage, AFolderWithoutRastersIsTold) {
    folder.Write(L"in/d.sid", "x");
    AddFolder(folder.Name(L"in"), PromptAnswer::Yes);
    ASSERT_THAT(prompts.shown, SizeIs(2));
    EXPECT_EQ(prompts.shown[1].text, Text(text::kRasterFolderEmpty));
    EXPECT_EQ(prompts.shown[1].caption, Text(text::kAddFolderCaption));
    EXPECT_EQ(prompts.shown[1].icon, PromptIcon::Error);
    EXPECT_THAT(Names(), IsEmpty());
}

TEST_F(RasterPage, EscapeKeepsWhatWasAddedUntilThen) {
    constexpr std::size_t kMoreThanWait = 900;  // than can be read ahead of the rows
    std::vector<std::wstring> paths;
    for (std::size_t i = 0; i < kMoreThanWait; ++i) {
        paths.push_back(folder.Name(L"missing" + std::to_wstring(i) + L".tif"));
    }
    QObject::connect(&page->Model(), &GridModel::RecordsChanged, [this] { progress.Stop(); });
    PickAndAdd(paths);
    EXPECT_GT(Names().size(), 0U);
    EXPECT_LT(Names().size(), kMoreThanWait);
    EXPECT_TRUE(Enabled(kAddFiles)) << "the page is usable again";
}

/// A host's object that always throws.
class ThrowingInformation final : public OrvexRasterInformation {
  public:
    std::int32_t Describe(const std::wstring&, RasterProperties&, std::wstring&) override {
        throw std::runtime_error("the driver failed");
    }
};

TEST_F(RasterPage, AnExceptionWhileReadingIsToldOnceAndTheFilesAreListed) {
    hostObjects.rasterInformation = [](std::int32_t&) { return std::make_unique<ThrowingInformation>(); };
    MakePage();
    PickAndAdd({Tif(L"a.tif"), Tif(L"b.tif")});
    EXPECT_THAT(Names(), ElementsAre(L"a.tif", L"b.tif"));
    ASSERT_THAT(prompts.shown, SizeIs(1));
    EXPECT_EQ(prompts.shown[0].text, Text(text::kRasterPropertiesFailed));
    EXPECT_EQ(prompts.shown[0].caption, Text(text::kRasterPropertiesFailed));
    EXPECT_EQ(prompts.shown[0].icon, PromptIcon::Error);
}

TEST_F(RasterPage, AppendingTakesCompatibleLayersOfTheProject) {
    params.existingRasterLayers = {{L"Ortho 2020", Wkt(25832)}};
    PickAndAdd({Tif(L"a.tif"), Tif(L"b.tif", 28992)});
    EXPECT_THAT(Layers(), ElementsAre(L"Ortho 2020", L"Raster Layer_1"));
    Check(kAppend);
    EXPECT_THAT(Layers(), ElementsAre(L"Raster Layer_1", L"Raster Layer_2"));
}

TEST_F(RasterPage, OkStoresFilesAndOptionsAndTheHostOwnsTheDetails) {
    const std::wstring good = Tif(L"a.tif");
    PickAndAdd({good, folder.Write(L"broken.tif", "x")});
    Check(kPyramid);
    Click(kDetailColumns);
    ASSERT_TRUE(page->ValidateAndStore());
    EXPECT_THAT(params.rasterFiles[FolderOf(good)], ElementsAre(L"a.tif"));
    EXPECT_THAT(params.rasterFileDetails, SizeIs(1));
    EXPECT_THAT(Names(), SizeIs(2)) << "what could not be read stays listed";
    EXPECT_TRUE(params.rasterAppend);
    EXPECT_FALSE(params.rasterPyramid);
    page.reset();
    const std::unique_ptr<RasterFileInfo> details(params.rasterFileDetails[good]);
    EXPECT_EQ(details->Properties().width, 20);
    MakePage();
    EXPECT_FALSE(Checked(kPyramid));
    EXPECT_EQ(Find<QAbstractButton>(kDetailColumns)->text(), "<<");
    EXPECT_TRUE(Grid().DetailColumnsShown());
}

TEST_F(RasterPage, OkWithoutRowsStoresTheOptions) {
    Check(kAppend);
    ASSERT_TRUE(page->ValidateAndStore());
    EXPECT_FALSE(params.rasterAppend);
    EXPECT_TRUE(params.rasterPyramid);
    EXPECT_THAT(params.rasterFiles, IsEmpty());
    EXPECT_FALSE(ReadRasterPageOptions(options).append);
}

TEST_F(RasterPage, WhatChangesAfterAnOkIsTakenBack) {
    PickAndAdd({Tif(L"a.tif"), Tif(L"b.tif")});
    ASSERT_TRUE(page->ValidateAndStore());
    Grid().SelectRows({0});
    Click(kRemove);
    EXPECT_THAT(params.rasterFileDetails, IsEmpty());
    ASSERT_TRUE(page->ValidateAndStore());
    EXPECT_THAT(params.rasterFileDetails, SizeIs(1));
    page->Release();
    EXPECT_THAT(params.rasterFileDetails, IsEmpty());
    EXPECT_THAT(Names(), IsEmpty());
}

TEST_F(RasterPage, RefreshReadsTheFilesAgain) {
    const std::wstring path = Tif(L"a.tif");
    PickAndAdd({path});
    testing::GeoTiff larger;
    larger.width = 77;
    larger.Write(folder, L"a.tif");
    Click(kRefresh);
    EXPECT_THAT(Shown(RasterColumn::ImageSize), ElementsAre(L"77 x 10"));
    std::filesystem::remove(ToPath(path));
    Click(kRefresh);
    EXPECT_THAT(Layers(), ElementsAre(L""));
}

TEST_F(RasterPage, F1OpensItsTopic) {
    page->activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(page.get()));
    QTest::keyClick(Find<QWidget>(kAddFiles), Qt::Key_F1);
    EXPECT_THAT(help.shown, ElementsAre(HelpTopic::RasterFiles));
}

TEST_F(RasterPage, ControlsFollowTheRows) {
    for (const int id : {kRemove, kClear, kSelectAll, kRefresh}) {
        EXPECT_FALSE(Enabled(id)) << id;
    }
    PickAndAdd({Tif(L"a.tif"), Tif(L"b.tif")});
    Click(kSelectAll);
    EXPECT_THAT(Grid().SelectedRows(), SizeIs(2));
    EXPECT_THAT(PaneText("rasterOverview"), HasSubstr(ToUtf8(Text(text::kTotalsFiles))));
    Click(kClear);
    EXPECT_THAT(Names(), IsEmpty());
    const std::pair<int, StringId> tooltips[] = {{kSelectAll, text::kSelectAllTooltip},
                                                 {kHelp, text::kHelpTooltip},
                                                 {kDetailColumns, text::kDetailColumnsTooltip},
                                                 {kPyramid, text::kRasterPyramidsTooltip}};
    for (const auto& [id, tooltip] : tooltips) {
        EXPECT_EQ(ToWide(Find<QWidget>(id)->toolTip()), Text(tooltip)) << id;
    }
}

TEST_F(RasterPage, TheGridHasTheWidthsOfItsTable) {
    PickAndAdd({Tif(L"a.tif")});
    Click(kDetailColumns);
    for (const GridColumn& column : RasterColumns(RasterUse::Image)) {
        const int index = static_cast<int>(&column - RasterColumns(RasterUse::Image).data());
        EXPECT_EQ(Grid().IsColumnShown(index), !column.hidden) << column.name;
        if (!column.hidden) {
            EXPECT_EQ(Grid().ColumnWidth(index), column.width) << column.name;
        }
    }
}

TEST(RasterModel, StaysConsistentThroughInsertsRemovalsAndClearing) {
    RasterFilesModelOf<RasterUse::Dem> model;
    const QAbstractItemModelTester tester(&model, QAbstractItemModelTester::FailureReportingMode::Fatal);
    std::vector<ListedRaster> batch;
    for (const wchar_t* name : {L"/a.tif", L"/b.tif", L"/c.tif"}) {
        batch.push_back(FailedRaster(name, L"why"));
    }
    model.Append(std::move(batch));
    EXPECT_EQ(model.columnCount(), kDemColumnCount);
    EXPECT_EQ(model.CellText(1, IndexOf(RasterColumn::FileName)), L"b.tif");
    EXPECT_EQ(ToWide(model.index(0, 8).data(Qt::ToolTipRole).toString()),
              Text(text::kRasterCannotBeRead) + L" why");
    model.Remove({0, 2});
    EXPECT_EQ(model.Rows().front().inspection.path, L"/b.tif");
    model.Clear();
    EXPECT_EQ(model.rowCount(), 0);
}

}  // namespace
}  // namespace orvex
